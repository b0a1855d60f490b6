#include "platform/linux/camera_lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/linux/accessory_folder.h"
#include "platform/linux/error_text.h"
#include "platform/linux/percent_encoding.h"

namespace zel::platform {
namespace {

// A lock that is being taken does not name its holder yet, and one that is being released loses its file.
constexpr int kAttempts = 50;
constexpr std::chrono::milliseconds kPause{2};
constexpr std::size_t kLongestUser = 256;  // bytes of the holder's description that are read

// FNV-1a: the same in every program and version.
std::uint64_t hashOf(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char letter : text) hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3;
  return hash;
}

std::string hexOf(std::uint64_t value, int digits) {
  std::string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += "0123456789ABCDEF"[value >> shift & 0xF];
  return text;
}

// Whether the folder can hold locks. Creates it if missing. No other user may have write permission.
bool isUsable(const std::string& folder) {
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return false;
  struct stat found = {};
  if (::lstat(folder.c_str(), &found) != 0) return false;
  const bool ours = S_ISDIR(found.st_mode) && found.st_uid == ::geteuid() && (found.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  if (!ours) errno = EPERM;
  return ours && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

bool isFileAt(const std::string& path, int descriptor) {
  struct stat there = {}, open = {};
  return ::stat(path.c_str(), &there) == 0 && ::fstat(descriptor, &open) == 0 && there.st_dev == open.st_dev &&
         there.st_ino == open.st_ino;
}

// "4711 zelcam live"
void writeUser(int descriptor, const std::string& program) {
  const std::string text = std::to_string(::getpid()) + " " + program + "\n";
  // On a full disk only the name is missing.
  if (::ftruncate(descriptor, 0) != 0 || ::pwrite(descriptor, text.data(), text.size(), 0) < 0) return;
}

CameraUser readUser(int descriptor) {
  std::array<char, kLongestUser> buffer{};
  const ssize_t size = ::pread(descriptor, buffer.data(), buffer.size(), 0);
  std::string_view text(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  text = text.substr(0, text.find('\n'));
  CameraUser user;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), user.process);
  if (fault != std::errc()) return {};
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.starts_with(' ')) user.program = text.substr(1);
  return user;
}

bool isRunning(const CameraUser& user) {
  return user.process > 0 && (::kill(static_cast<pid_t>(user.process), 0) == 0 || errno == EPERM);
}

// One attempt. Returns whether there is a result, good or bad.
bool tryToTake(const std::string& folder, const std::string& camera, const std::string& program,
               CameraLock::Taken& taken) {
  const std::string path = folder + "/" + lockFileName(camera);
  UniqueDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
  if (!file && errno == ENOENT) return false;  // the folder was just removed with its last lock
  const bool locked = file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
  if (!locked && (!file || errno != EWOULDBLOCK)) {
    taken.fault = path + ": " + errorText(errno);
    return true;
  }
  if (!locked) {
    taken.user = readUser(file.get());
    // This process's own lock may be about to be released, on the thread of a closed session.
    return isRunning(*taken.user) && taken.user->process != ::getpid();
  }
  if (!isFileAt(path, file.get())) return false;
  writeUser(file.get(), program);
  taken.user.reset();
  taken.lock = std::make_shared<CameraLock>(folder, path, std::move(file));
  return true;
}

}  // namespace

std::string lockFileName(const std::string& camera) {
  constexpr std::size_t kLongest = 200;  // of the 255 bytes of a file's name
  std::string name = percentEncoded(camera);
  if (name.size() > kLongest) name = name.substr(0, kLongest) + "%" + hexOf(hashOf(camera), 16);
  return name + ".lock";
}

CameraLock::Taken CameraLock::take(const std::string& busFolder, const std::string& camera, const std::string& program,
                                   Patience patience) {
  const std::string bus = realFolder(busFolder);
  Taken taken;
  const int attempts = patience == Patience::none ? 1 : kAttempts;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    if (attempt != 0) std::this_thread::sleep_for(kPause);
    std::string folder = bus + ".locks";
    if (!isUsable(folder)) folder = bus + "/.locks";
    if (!isUsable(folder)) {
      taken.fault = folder + ": " + errorText(errno);
      return taken;
    }
    if (tryToTake(folder, camera, program, taken)) return taken;
  }
  if (!taken.user) taken.user = CameraUser();
  return taken;
}

CameraLock::CameraLock(std::string folder, std::string path, UniqueDescriptor file)
    : folder_(std::move(folder)), path_(std::move(path)), file_(std::move(file)) {}

// The file is removed while it is still locked: a process that has opened it meanwhile detects that it is no longer the
// file at that path.
CameraLock::~CameraLock() {
  if (!isFileAt(path_, file_.get())) return;
  ::unlink(path_.c_str());
  ::rmdir(folder_.c_str());  // fails while there are other locks in it
}

}  // namespace zel::platform
