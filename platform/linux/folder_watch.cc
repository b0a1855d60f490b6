#include "platform/linux/folder_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace zel::platform {
namespace {

// A file is processed when it is complete: renamed into the folder, or closed after writing.
constexpr std::uint32_t kFileChanges = IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CLOSE_WRITE;
constexpr std::uint32_t kFolderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

FolderChange changeOf(const inotify_event& record, const char* name) {
  if ((record.mask & IN_Q_OVERFLOW) != 0) return {.kind = FolderChange::Kind::many, .name = {}};
  if ((record.mask & kFolderGone) != 0) return {.kind = FolderChange::Kind::gone, .name = {}};
  return {.kind = FolderChange::Kind::file, .name = record.len > 0 ? name : ""};
}

}  // namespace

std::shared_ptr<FolderWatch> FolderWatch::start(LinuxRunLoop& loop, const std::string& folder, Observer observer,
                                                std::string& fault) {
  const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (descriptor < 0 ||
      inotify_add_watch(descriptor, folder.c_str(), kFileChanges | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR) < 0) {
    fault = std::generic_category().message(errno);
    if (descriptor >= 0) close(descriptor);
    return nullptr;
  }
  auto watch = std::make_shared<FolderWatch>(loop, descriptor, std::move(observer));
  loop.perform([watch] { watch->wait(); });
  return watch;
}

FolderWatch::FolderWatch(LinuxRunLoop& loop, int descriptor, Observer observer)
    : loop_(loop), notifications_(loop.context(), descriptor), observer_(std::move(observer)) {}

void FolderWatch::stop() {
  if (stopped_.exchange(true)) return;
  loop_.perform([self = shared_from_this()] {
    std::error_code ignored;
    self->notifications_.close(ignored);
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
