#include "gateway/feed/live_feed.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace zel::gateway {
namespace {

using Steady = std::chrono::steady_clock;

constexpr std::size_t kPieceCost = 256;     // of a piece beside its bytes
constexpr std::size_t kJoinMargin = 65536;  // what a viewer may be behind beside all that it got at once

std::int64_t systemTimeOf(Steady::time_point moment) {
  using std::chrono::duration_cast, std::chrono::microseconds;
  const auto ago = duration_cast<microseconds>(Steady::now() - moment);
  return (duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()) - ago).count();
}

LiveFeed::Options completed(LiveFeed::Options options) {
  if (!options.unixTime) options.unixTime = systemTimeOf;
  if (!(options.rate > 0)) options.rate = LiveFeed::Options().rate;
  return options;
}

}  // namespace

LiveFeed::LiveFeed(Options options) : options_(completed(std::move(options))) {}

LiveFeed::~LiveFeed() { end(); }

// -- What comes

void LiveFeed::onHeaders(const StreamHeaders& headers) {
  const MutexLock lock(mutex_);
  headers_ = headers;
  description_.reset();  // nothing can be shown before a key picture
  group_.clear();
  groupBytes_ = 0;
  isAnotherEpoch_ = true;
  epoch_.restart();
  times_.beginStream();
}

void LiveFeed::onPacket(const MediaPacket& packet) {
  Calls calls;
  {
    const MutexLock lock(mutex_);
    if (isEnded_ || !headers_) return;
    auto piece = pieceOf(packet);
    if (!piece) return;
    handOut(*piece, calls);
    keep(*piece);
  }
  for (const auto& call : calls) call();
}

// The packet as viewers get it; nothing before the first key picture, and behind one that cannot be described.
std::optional<FeedPiece> LiveFeed::pieceOf(const MediaPacket& packet) {
  MediaPacket placed = packet;
  const std::int64_t shift = times_.shift();
  placed.time = times_.place(packet);
  const bool isPicture = packet.track == Track::video;
  if (times_.shift() != shift || (isPicture && packet.discontinuity)) isAnotherEpoch_ = true;
  if (isPicture) noteArrival(placed);
  if (isPicture && packet.key && !beginGroup(placed)) return std::nullopt;
  if (!description_) return std::nullopt;
  ++(isPicture ? statistics_.pictures : statistics_.audioFrames);
  return FeedPiece{std::move(placed), beginning_, std::nullopt};
}

void LiveFeed::noteArrival(const MediaPacket& packet) {
  if (packet.key && isAnotherEpoch_) epoch_.restart();
  epoch_.note(options_.unixTime(packet.arrival.value_or(Steady::now())), packet.time);
}

// A key picture, which gets its parameter sets.
bool LiveFeed::beginGroup(MediaPacket& packet) {
  group_.clear();
  groupBytes_ = 0;
  const auto description = describeFrom(*headers_, options_.rate, packet.data.bytes());
  if (!description) {
    description_.reset();
    return false;
  }
  renewBeginning(*description);
  packet.data = withParameterSets(packet.data, *description);
  return true;
}

// The description is made for each key picture, so that who joins gets the newest epoch; those who have one get another
// only where something changed.
void LiveFeed::renewBeginning(const StreamDescription& description) {
  const bool isOther = !beginning_ || shown_ != description;
  auto next = std::make_shared<FeedBeginning>(beginning_ ? *beginning_ : FeedBeginning{});
  if (isOther) {
    ++next->headers;
    next->mp4 = ZELData(mp4Beginning(description));
  }
  if (isOther || isAnotherEpoch_) ++next->version;
  isAnotherEpoch_ = false;
  const std::string json = describeAsJson(description, epoch_.epoch());
  next->json = ZELData(std::vector<std::uint8_t>(json.begin(), json.end()));
  description_ = shown_ = description;
  beginning_ = std::move(next);
}

// -- Who gets it

void LiveFeed::makeFragment(FeedPiece& piece) {
  if (piece.fragment) return;
  auto fragment = fragments_.fragment(piece.packet, *description_);
  piece.fragment = fragment ? ZELData(*std::move(fragment)) : ZELData();
}

void LiveFeed::handOut(FeedPiece& piece, Calls& calls) {
  std::erase_if(viewers_, [](const auto& one) { return one.expired(); });
  for (const auto& viewer : viewers()) {
    if (viewer->form() == FeedForm::mp4) makeFragment(piece);
    if (auto call = viewer->put(piece)) calls.push_back(std::move(call));
  }
}

void LiveFeed::keep(const FeedPiece& piece) {
  const bool begins = piece.packet.track == Track::video && piece.packet.key;
  if (group_.empty() && !begins) return;  // the group was too long
  groupBytes_ += piece.packet.data.size() + kPieceCost;
  group_.push_back(piece);
  if (groupBytes_ <= options_.mostGroupBytes) return;
  group_.clear();
  groupBytes_ = 0;
}

std::vector<std::shared_ptr<Viewer>> LiveFeed::viewers() const {
  std::vector<std::shared_ptr<Viewer>> alive;
  for (const auto& one : viewers_)
    if (auto viewer = one.lock()) alive.push_back(std::move(viewer));
  return alive;
}

std::shared_ptr<Viewer> LiveFeed::join(FeedForm form, std::function<void()> ready) {
  const MutexLock lock(mutex_);
  const std::size_t most = std::max(options_.mostViewerBytes, 2 * groupBytes_ + kJoinMargin);
  auto viewer = std::make_shared<Viewer>(form, most, std::move(ready), counts_);
  for (FeedPiece& piece : group_) {
    if (form == FeedForm::mp4) makeFragment(piece);
    viewer->put(piece);
  }
  if (isEnded_) viewer->end();
  std::erase_if(viewers_, [](const auto& one) { return one.expired(); });
  viewers_.push_back(viewer);
  return viewer;
}

void LiveFeed::end() {
  Calls calls;
  {
    const MutexLock lock(mutex_);
    isEnded_ = true;
    for (const auto& viewer : viewers())
      if (auto call = viewer->end()) calls.push_back(std::move(call));
  }
  for (const auto& call : calls) call();
}

FeedStatistics LiveFeed::statistics() const {
  const MutexLock lock(mutex_);
  FeedStatistics statistics = statistics_;
  for (const auto& viewer : viewers())
    ++(viewer->form() == FeedForm::mp4 ? statistics.mp4Viewers : statistics.unitsViewers);
  statistics.bytes = counts_->bytes;
  statistics.skipped = counts_->skipped;
  return statistics;
}

}  // namespace zel::gateway
