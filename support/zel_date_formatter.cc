#include <ZELTarkaSDK/ZELDateFormatter.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/documents.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/shared_value.h"
#include "support/log_file.h"

namespace {

constexpr char kTimeStampFormat[] = "yyyy-MM-dd HH:mm:ss:SSS";
constexpr char kLogName[] = "log.txt";
constexpr std::chrono::sys_days kEpoch = std::chrono::January / 1 / 2001;

// A point in time, split into its fields.
struct LocalTime {
  explicit LocalTime(std::chrono::sys_time<std::chrono::microseconds> moment)
      : date(std::chrono::floor<std::chrono::days>(moment)),
        time(moment - std::chrono::floor<std::chrono::days>(moment)) {}

  std::chrono::year_month_day date;
  std::chrono::hh_mm_ss<std::chrono::microseconds> time;
};

std::string padded(std::int64_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

// The text for a run of that many of the letter.
std::string fieldText(char letter, std::size_t run, const LocalTime& moment) {
  switch (letter) {
    case 'y':
      return padded(static_cast<int>(moment.date.year()), run);
    case 'M':
      return padded(static_cast<unsigned>(moment.date.month()), run);
    case 'd':
      return padded(static_cast<unsigned>(moment.date.day()), run);
    case 'H':
      return padded(moment.time.hours().count(), run);
    case 'm':
      return padded(moment.time.minutes().count(), run);
    case 's':
      return padded(moment.time.seconds().count(), run);
    case 'S': {
      std::string fraction = padded(moment.time.subseconds().count(), 6);
      fraction.resize(run, '0');
      return fraction;
    }
    default:
      return std::string(run, letter);
  }
}

}  // namespace

struct ZELDateFormatter::Format {
  zel::Guarded<std::string> text;
};

ZELDateFormatter::ZELDateFormatter(const zel::platform::Ports& ports)
    : ZELDateFormatter(ports.clock, [ports] { return logFileOf(ports); }) {}

ZELDateFormatter::ZELDateFormatter(const zel::platform::Clock& clock, std::string logFile)
    : ZELDateFormatter(clock, [logFile = std::move(logFile)] { return logFile; }) {}

ZELDateFormatter::ZELDateFormatter(const zel::platform::Clock& clock, std::function<std::string()> logFile)
    : clock_(clock), logFile_(std::move(logFile)), format_(std::make_unique<Format>()) {}

ZELDateFormatter::~ZELDateFormatter() = default;

std::string ZELDateFormatter::logFileOf(const zel::platform::Ports& ports) {
  const std::string folder = ports.documents != nullptr ? ports.documents->folder() : std::string();
  return folder.empty() ? folder : folder + "/" + kLogName;
}

std::string ZELDateFormatter::getCurrentTime() {
  setDateFormat(kTimeStampFormat);
  return stringFromDate(clock_.absoluteTime());
}

std::string ZELDateFormatter::dateFormat() const { return format_->text.get(); }

void ZELDateFormatter::setDateFormat(const std::string& dateFormat) { format_->text.set(dateFormat); }

std::string ZELDateFormatter::stringFromDate(double date) const {
  const std::string format = dateFormat();
  // A double resolves today's seconds to microseconds; rounding to them keeps 0.007 s from becoming 6.999 ms.
  const std::chrono::microseconds sinceEpoch(std::llround(date * 1e6));
  const LocalTime moment(kEpoch + sinceEpoch + std::chrono::seconds(clock_.localTimeOffset(date)));
  std::string text;
  for (std::size_t at = 0; at < format.size();) {
    const std::size_t end = std::min(format.find_first_not_of(format[at], at), format.size());
    text += fieldText(format[at], end - at, moment);
    at = end;
  }
  return text;
}

void ZELDateFormatter::writeLogToFile(const void* bytes, std::uint64_t length) {
  if (length > std::numeric_limits<std::size_t>::max() || (bytes == nullptr && length > 0)) return;
  const std::string path = logFile_();
  if (path.empty()) return;
  zel::appendToFile(path, {static_cast<const std::uint8_t*>(bytes), static_cast<std::size_t>(length)});
}
