#include "simulator/recorder.h"

#include <algorithm>
#include <utility>

namespace zel::simulator {
namespace {

constexpr std::chrono::milliseconds kBetweenLooks{1000};

}  // namespace

bool Recorder::start(Bytes sensors, Bytes extra) {
  if (current_ || !state_.card.takes(1)) return false;
  current_ = Recording();
  current_->sensors = std::move(sensors);
  current_->extra = std::move(extra);
  current_->file.time = state_.clock.now();
  current_->file.name = state_.clock.nextFileName("VID", faults_.nameLetters + ".mp4");
  current_->began = world_.uptime();
  current_->bytesPerMs = state_.videoBytesPerMs();
  settleLater();
  return true;
}

std::optional<FileEntry> Recorder::stop() {
  settle();
  if (!current_) return std::nullopt;
  return finish();
}

bool Recorder::cancel() {
  settle();
  if (!current_) return false;
  state_.card.give(current_->file.size);
  current_.reset();
  return true;
}

void Recorder::settle() {
  if (!current_) return;
  const Time now = world_.uptime();
  const auto end = limit();
  grow(end ? std::min(now, *end) : now);
  if (!state_.card.takes(1)) {
    endForCard();
  } else if (end && now >= *end) {
    endForTime();
  }
}

std::optional<Recorder::Time> Recorder::limit() const {
  const std::uint8_t seconds = state_.settings.value(kRecordingLimit)[0];
  if (seconds == 0) return std::nullopt;
  return current_->began + std::chrono::seconds(seconds);
}

void Recorder::grow(Time until) {
  const auto elapsed = std::max<std::int64_t>(0, (until - current_->began).count());
  const std::uint64_t size = static_cast<std::uint64_t>(elapsed) * current_->bytesPerMs;
  const std::uint64_t more = std::min(size - std::min(size, current_->file.size), state_.card.free());
  state_.card.take(more);
  current_->file.size += more;
}

void Recorder::settleLater() {
  const auto end = limit();
  const Time time = end ? std::min(kBetweenLooks, *end - world_.uptime()) : kBetweenLooks;
  world_.later(std::max(time, Time(1)), [this, timer = ++timers_] {
    if (timer != timers_ || !current_) return;
    settle();
    if (current_) settleLater();
  });
}

FileEntry Recorder::finish() {
  const Recording done = *std::exchange(current_, std::nullopt);
  state_.addFile(done.file, done.sensors);
  if (!done.extra.empty()) state_.videoExtras.set(done.file.name, done.extra);
  return done.file;
}

void Recorder::endForCard() {
  world_.tellHost(message(kCardRunoutEvent, endOfCurrent()));
  world_.tellHost(message(kCardStateEvent, {state_.cardState()}));
}

void Recorder::split() {
  settle();
  if (!current_) return world_.tellHost(message(kSplitEvent, {}));
  const Recording before = *current_;
  const FileEntry file = finish();
  start(before.sensors, before.extra);
  world_.tellHost(message(kSplitEvent, entryBody(file)));
}

}  // namespace zel::simulator
