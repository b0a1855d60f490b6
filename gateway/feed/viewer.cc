#include "gateway/feed/viewer.h"

#include <algorithm>
#include <utility>

namespace zel::gateway {
namespace {

constexpr std::size_t kChunkCost = 128;  // of a chunk beside its bytes, so that many tiny ones are bounded too
constexpr unsigned kKey = 1, kDiscontinuity = 2;

template <class Number>
void putLittleEndian(std::span<std::uint8_t> to, Number value) {
  for (std::uint8_t& byte : to) {
    byte = static_cast<std::uint8_t>(value & 0xFF);
    value >>= 8;
  }
}

}  // namespace

Viewer::Viewer(FeedForm form, std::size_t mostBytes, std::function<void()> ready, std::shared_ptr<ViewerCounts> counts)
    : form_(form), mostBytes_(mostBytes), ready_(std::move(ready)), counts_(std::move(counts)) {}

// -- The reader's side

std::size_t Viewer::read(std::span<std::uint8_t> to) {
  const MutexLock lock(mutex_);
  std::size_t done = 0;
  while (done < to.size() && !chunks_.empty()) {
    const Chunk& chunk = chunks_.front();
    const bool inHead = at_ < chunk.headSize;
    const std::span<const std::uint8_t> rest = inHead ? std::span(chunk.head).subspan(at_, chunk.headSize - at_)
                                                      : chunk.body.bytes().subspan(at_ - chunk.headSize);
    const std::size_t count = std::min(rest.size(), to.size() - done);
    std::copy_n(rest.begin(), count, to.begin() + static_cast<std::ptrdiff_t>(done));
    done += count;
    at_ += count;
    if (at_ < chunk.size()) continue;
    backlog_ -= chunk.size() + kChunkCost;
    chunks_.pop_front();
    at_ = 0;
  }
  isStarved_ = done == 0 && !to.empty() && state_ != State::ended;
  counts_->bytes += done;
  return done;
}

bool Viewer::isEnded() const {
  const MutexLock lock(mutex_);
  return state_ == State::ended && chunks_.empty();
}

std::uint64_t Viewer::skipped() const {
  const MutexLock lock(mutex_);
  return skipped_;
}

// -- The feed's side

std::function<void()> Viewer::put(const FeedPiece& piece) {
  const MutexLock lock(mutex_);
  const bool isPicture = piece.packet.track == Track::video;
  const bool isKey = isPicture && piece.packet.key;
  if (state_ == State::ended) return nullptr;
  const bool resumes = state_ == State::skipping;
  if (state_ != State::flowing && !isKey) {
    if (resumes && isPicture) countSkipped();
    return nullptr;
  }
  state_ = State::flowing;
  if (isKey) putBeginning(*piece.beginning, piece.packet.time);
  if (form_ == FeedForm::units) {
    putUnit(piece, resumes);
  } else if (piece.fragment && !piece.fragment->empty()) {
    add({.body = *piece.fragment, .kind = isPicture ? Kind::picture : Kind::sound});
  }
  if (backlog_ > mostBytes_) skip();
  return wake();
}

std::function<void()> Viewer::end() {
  const MutexLock lock(mutex_);
  if (std::exchange(state_, State::ended) == State::ended) return nullptr;
  return std::exchange(isStarved_, false) ? ready_ : nullptr;
}

void Viewer::putBeginning(const FeedBeginning& beginning, std::int64_t time) {
  const std::uint64_t number = form_ == FeedForm::mp4 ? beginning.headers : beginning.version;
  if (std::exchange(beginning_, number) == number) return;
  add(form_ == FeedForm::mp4 ? Chunk{.body = beginning.mp4, .kind = Kind::description}
                             : record(Kind::description, 0, time, beginning.json));
}

void Viewer::putUnit(const FeedPiece& piece, bool resumes) {
  const bool isPicture = piece.packet.track == Track::video;
  const unsigned flags = (piece.packet.key ? kKey : 0) | (piece.packet.discontinuity || resumes ? kDiscontinuity : 0);
  add(record(isPicture ? Kind::picture : Kind::sound, flags, piece.packet.time, piece.packet.data));
}

Viewer::Chunk Viewer::record(Kind kind, unsigned flags, std::int64_t time, ZELData body) {
  Chunk chunk{.headSize = kRecordHead, .body = std::move(body), .kind = kind};
  const std::span<std::uint8_t> head(chunk.head);
  putLittleEndian(head.first(4), static_cast<std::uint32_t>(kRecordHead - 4 + chunk.body.size()));
  head[4] = static_cast<std::uint8_t>(kind);
  head[5] = static_cast<std::uint8_t>(flags);
  putLittleEndian(head.subspan(6), static_cast<std::uint64_t>(time));
  return chunk;
}

void Viewer::add(Chunk chunk) {
  backlog_ += chunk.size() + kChunkCost;
  chunks_.push_back(std::move(chunk));
}

// A chunk that was begun is sent to its end, or the reader could not make sense of what follows it. A description that
// goes is sent again before the next key picture.
void Viewer::skip() {
  state_ = State::skipping;
  while (chunks_.size() > (at_ > 0 ? 1U : 0U)) {
    if (chunks_.back().kind == Kind::picture) countSkipped();
    if (chunks_.back().kind == Kind::description) beginning_ = 0;
    backlog_ -= chunks_.back().size() + kChunkCost;
    chunks_.pop_back();
  }
}

void Viewer::countSkipped() {
  ++skipped_;
  ++counts_->skipped;
}

std::function<void()> Viewer::wake() { return !chunks_.empty() && std::exchange(isStarved_, false) ? ready_ : nullptr; }

}  // namespace zel::gateway
