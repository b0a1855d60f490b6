#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

namespace zel::platform {
class Clock;
struct Ports;
}  // namespace zel::platform

// Time stamps, and a log file for what the host wants to keep. The framework itself writes nothing there.
// Owner:  the ports, or the clock, must outlive the object.
// Thread: any thread. Writes of several threads at once may interleave or replace one another.
class ZEL_EXPORT ZELDateFormatter {
 public:
  // The formatter of the process, made once and never destroyed. Its ports are those that setDefaultPorts() has named;
  // until then the time is the system's, in UTC, and what is written is lost.
  static ZELDateFormatter& defaultFormatter();

  // Writes to log.txt in the documents folder of the ports, or to the file of that path.
  explicit ZELDateFormatter(const zel::platform::Ports& ports);
  ZELDateFormatter(const zel::platform::Clock& clock, std::string logFile);
  ~ZELDateFormatter();
  ZELDateFormatter(const ZELDateFormatter&) = delete;
  ZELDateFormatter& operator=(const ZELDateFormatter&) = delete;

  // The current local time as "yyyy-MM-dd HH:mm:ss:SSS": a colon, not a point, stands before the milliseconds. The
  // format is set anew with each call, and stays set.
  std::string getCurrentTime();

  // How stringFromDate() writes; empty at first. Runs of y, M, d, H, m and s are numbers of at least so many digits,
  // those of S the digits of the second's fraction; everything else stands for itself.
  std::string dateFormat() const;
  void setDateFormat(const std::string& dateFormat);

  // stringFromDate: - a time in the format, in the clock's local time.
  // Units:  seconds since 1 January 2001 UTC.
  std::string stringFromDate(double date) const;

  // writeLogToFile:length: - appends the bytes to the log file, exactly as they are; a file that cannot be opened is
  // made, or replaced, whole.
  // Errors: none; what cannot be written is lost.
  void writeLogToFile(const void* bytes, std::uint64_t length);

 private:
  ZELDateFormatter(const zel::platform::Clock& clock, std::function<std::string()> logFile);
  static std::string logFileOf(const zel::platform::Ports& ports);

  const zel::platform::Clock& clock_;
  const std::function<std::string()> logFile_;  // tells an empty path where there is none
  struct Format;
  const std::unique_ptr<Format> format_;
};
