#include "platform/linux/folder_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/error_text.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::platform {
namespace {

// A file is processed when it is complete: renamed into the folder, or closed after writing.
constexpr std::uint32_t kFileChanges = IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CLOSE_WRITE;
constexpr double kLookPeriod = 1;  // seconds, without notifications
constexpr std::uint32_t kFolderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

FolderChange changeOf(const inotify_event& record, const char* name) {
  if ((record.mask & IN_Q_OVERFLOW) != 0) return {.kind = FolderChange::Kind::many, .name = {}};
  if ((record.mask & kFolderGone) != 0) return {.kind = FolderChange::Kind::gone, .name = {}};
  return {.kind = FolderChange::Kind::file, .name = record.len > 0 ? name : ""};
}

// The kernel counts an instance for some milliseconds after it was closed, longer on a loaded machine.
int instance() {
  constexpr int kMostTries = 40;
  constexpr std::chrono::milliseconds kBetween{5};
  int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (int more = 1; descriptor < 0 && errno == EMFILE && more < kMostTries; ++more) {
    std::this_thread::sleep_for(kBetween);
    descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  }
  return descriptor;
}

// The descriptor of a folder's notifications, or -1.
int notificationsOf(const std::string& folder, int& code) {
  UniqueDescriptor descriptor(instance());
  constexpr std::uint32_t kChanges = kFileChanges | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
  const bool isWatched = descriptor && inotify_add_watch(descriptor.get(), folder.c_str(), kChanges) >= 0;
  code = isWatched ? 0 : errno;
  return isWatched ? descriptor.release() : -1;
}

}  // namespace

std::shared_ptr<FolderWatch> FolderWatch::start(LinuxRunLoop& loop, const std::string& folder, Observer observer,
                                                std::string& fault) {
  int code = 0;
  const int descriptor = notificationsOf(folder, code);
  if (code != 0) fault = errorText(code);
  if (code == ENOENT || code == ENOTDIR || code == EACCES) return nullptr;
  auto watch = std::make_shared<FolderWatch>(loop, descriptor, std::move(observer));
  loop.perform([watch] { watch->begin(); });
  return watch;
}

FolderWatch::FolderWatch(LinuxRunLoop& loop, int descriptor, Observer observer)
    : loop_(loop), notifications_(loop.context()), observer_(std::move(observer)) {
  if (descriptor >= 0) notifications_.assign(descriptor);
}

void FolderWatch::stop() {
  if (stopped_.exchange(true)) return;
  loop_.perform([self = shared_from_this()] {
    std::error_code ignored;
    self->notifications_.close(ignored);
    self->instead_.reset();
  });
}

void FolderWatch::begin() {
  if (notifications_.is_open() || stopped_.load()) return wait();
  instead_ = loop_.scheduleRepeating(kLookPeriod, [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (self && !self->stopped_.load()) self->observer_(*self, {.kind = FolderChange::Kind::many, .name = {}});
  });
}

void FolderWatch::wait() {
  if (stopped_.load()) return;
  notifications_.async_wait(asio::posix::stream_descriptor::wait_read,
                            loop_.handler([self = shared_from_this()](const std::error_code& error) {
                              if (error || self->stopped_.load()) return;
                              self->readChanges();
                              self->wait();
                            }));
}

void FolderWatch::readChanges() {
  alignas(inotify_event) std::array<char, 16384> records;
  while (!stopped_.load()) {
    const ssize_t size = read(notifications_.native_handle(), records.data(), records.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return;
    tell(records.data(), static_cast<std::size_t>(size));
  }
}

void FolderWatch::tell(const char* records, std::size_t size) {
  for (std::size_t at = 0; at + sizeof(inotify_event) <= size && !stopped_.load();) {
    inotify_event record = {};
    std::memcpy(&record, records + at, sizeof record);
    const FolderChange change = changeOf(record, records + at + sizeof record);
    at += sizeof record + record.len;
    observer_(*this, change);
    if (change.kind == FolderChange::Kind::gone) stop();
  }
}

}  // namespace zel::platform
