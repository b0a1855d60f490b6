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

// Time stamps, and a log file for the host. The framework itself writes nothing there.
// Owner:  the ports, or the clock, must outlive the object.
// Thread: any thread. Concurrent writes may interleave or overwrite one another.
class ZEL_EXPORT ZELDateFormatter {
 public:
  // The formatter of the process, created once and never destroyed. It uses the ports of setDefaultPorts(); until that
  // is called, the time is the system's in UTC, and log writes are lost.
  static ZELDateFormatter& defaultFormatter();

  // Writes to log.txt in the documents folder of the ports, or to the file of that path.
  explicit ZELDateFormatter(const zel::platform::Ports& ports);
  ZELDateFormatter(const zel::platform::Clock& clock, std::string logFile);
  ~ZELDateFormatter();
  ZELDateFormatter(const ZELDateFormatter&) = delete;
  ZELDateFormatter& operator=(const ZELDateFormatter&) = delete;

  // The current local time as "yyyy-MM-dd HH:mm:ss:SSS": a colon, not a point, stands before the milliseconds. Each
  // call sets dateFormat() to this format.
  std::string getCurrentTime();

  // The format of stringFromDate(); empty at first. A run of y, M, d, H, m or s is a number with at least that many
  // digits, a run of S the digits of the second's fraction; other characters are copied.
  std::string dateFormat() const;
  void setDateFormat(const std::string& dateFormat);

  // stringFromDate: - a time in the format, in the clock's local time.
  // Units:  seconds since 1 January 2001 UTC.
  std::string stringFromDate(double date) const;

  // writeLogToFile:length: - appends the bytes to the log file unchanged. A file that cannot be opened is created or
  // replaced.
  // Errors: none; bytes that cannot be written are lost.
  void writeLogToFile(const void* bytes, std::uint64_t length);

 private:
  ZELDateFormatter(const zel::platform::Clock& clock, std::function<std::string()> logFile);
  static std::string logFileOf(const zel::platform::Ports& ports);

  const zel::platform::Clock& clock_;
  const std::function<std::string()> logFile_;  // an empty path when there is none
  struct Format;
  const std::unique_ptr<Format> format_;
};
