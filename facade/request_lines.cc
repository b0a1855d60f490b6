#include "facade/request_lines.h"

#include <algorithm>
#include <utility>

namespace zel {

RequestLines::Id RequestLines::nextId() {
  const MutexLock lock(mutex_);
  return next_++;
}

void RequestLines::add(std::string_view kind, Id id, Request request) {
  const auto fail = request.fail;
  std::function<void()> send;
  std::shared_ptr<const CameraError> end;
  {
    const MutexLock lock(mutex_);
    end = end_;
    if (!end) {
      Line& line = lines_[kind];
      line.push_back({id, std::move(request), line.empty()});
      if (line.size() == 1) send = line.front().request.send;
    }
  }
  if (end) fail(*end);
  if (send) send();
}

void RequestLines::keep(std::string_view kind, Id id, std::shared_ptr<void> watch) {
  const MutexLock lock(mutex_);
  Line& line = lines_[kind];
  const auto found = std::ranges::find(line, id, &Entry::id);
  if (found != line.end() && found->request.fail) found->watch.swap(watch);
}

void RequestLines::answered(std::string_view kind, Id id) {
  Entry done;  // destroyed without the lock
  std::function<void()> send;
  {
    const MutexLock lock(mutex_);
    Line& line = lines_[kind];
    const auto found = std::ranges::find(line, id, &Entry::id);
    if (found == line.end()) return;
    done = std::move(*found);
    line.erase(found);
    if (!line.empty() && !std::exchange(line.front().isSent, true)) send = line.front().request.send;
  }
  if (send) send();
}

bool RequestLines::giveUp(std::string_view kind, Id id, const CameraError& why) {
  Request given;  // destroyed without the lock, as its watch
  std::shared_ptr<void> watch;
  bool isSent = false;
  {
    const MutexLock lock(mutex_);
    Line& line = lines_[kind];
    const auto found = std::ranges::find(line, id, &Entry::id);
    if (found == line.end()) return false;
    given = std::move(found->request);
    watch = std::move(found->watch);
    isSent = found->isSent;
    if (!isSent) line.erase(found);
  }
  if (given.fail) given.fail(why);
  return isSent && given.fail;
}

void RequestLines::failAll(const CameraError& why) {
  std::map<std::string_view, Line> lines;
  {
    const MutexLock lock(mutex_);
    end_ = std::make_shared<const CameraError>(why);
    lines.swap(lines_);
  }
  for (const auto& [kind, line] : lines) {
    for (const Entry& entry : line) {
      if (entry.request.fail) entry.request.fail(why);
    }
  }
}

}  // namespace zel
