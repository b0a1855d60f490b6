#include "gateway/line/picture_cache.h"

#include <algorithm>
#include <utility>

namespace zel::gateway {
namespace {

constexpr std::size_t kLongestSets = 4096;  // a real one has less than a hundred bytes

constexpr bool isSlice(NalType type) { return type == NalType::slice || type == NalType::idrSlice; }

}  // namespace

bool PictureCache::add(MediaItem& item) {
  bool beginsKey = false;
  if (item.kind == MediaItem::Kind::video) {
    beginsKey = addVideo(item);
  } else {
    if (item.kind == MediaItem::Kind::videoTime) videoTime_ = item;
    if (item.kind == MediaItem::Kind::audioTime) audioTime_ = item;
    keep(item);
  }
  return beginsKey;
}

bool PictureCache::addVideo(MediaItem& item) {
  const ByteView piece = item.frame.payload();
  std::optional<Head> key;
  collected_ = 0;
  scan_.scan(piece, [&](const UnitScan::Unit& unit) {
    collectSets(unit, piece);
    item.beginsPicture = item.beginsPicture || unit.beginsPicture;
    note(unit, item, key);
  });
  if (isCollecting_) collect(piece.subspan(collected_));
  if (key && key->index == items_.size()) {
    key->first.beginsPicture = true;
  } else if (key) {
    items_.push_back(item);
  } else {
    keep(item);
  }
  if (key) beginWith(*std::move(key));
  return key.has_value();
}

// A key picture begins with the parameter sets right before it, else with its first slice.
void PictureCache::note(const UnitScan::Unit& unit, const MediaItem& item, std::optional<Head>& key) {
  if (unit.type == NalType::sps && !head_) head_ = headAt(unit.at, item);
  if (!isSlice(unit.type)) return;
  if (unit.type == NalType::idrSlice && unit.beginsPicture) key = head_ ? *head_ : headAt(unit.at, item);
  head_.reset();
}

// The frame from that byte on, which may be one of the frame before.
PictureCache::Head PictureCache::headAt(std::ptrdiff_t at, const MediaItem& item) const {
  Head head{items_.size(), item};
  const ByteView piece = item.frame.payload();
  if (at < 0)
    head.first.frame = SharedBytes::frame(FrameType::previewVideo, scan_.last(static_cast<std::size_t>(-at)), piece);
  if (at > 0)
    head.first.frame = SharedBytes::frame(FrameType::previewVideo, piece.subspan(static_cast<std::size_t>(at)));
  return head;
}

void PictureCache::beginWith(Head head) {
  std::deque<MediaItem> rest;
  for (std::size_t i = head.index + 1; i < items_.size(); ++i) rest.push_back(std::move(items_[i]));
  const bool hasSets = UnitScan::beginsWithSet(head.first.frame.payload());
  items_.clear();
  cost_ = 0;
  isWhole_ = true;
  for (const auto& time : {audioTime_, videoTime_}) {
    if (time) keep(*time);
  }
  if (!hasSets && !sets_.empty()) {
    keep({MediaItem::Kind::video, SharedBytes::frame(FrameType::previewVideo, sets_), false, head.first.zero});
  }
  keep(std::move(head.first));
  for (MediaItem& item : rest) keep(std::move(item));
}

// The sets since the last sequence parameter set: a stream may send them once, and key pictures ever after.
void PictureCache::collectSets(const UnitScan::Unit& unit, ByteView piece) {
  const std::size_t begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(unit.at, 0));
  if (isCollecting_) {
    collect(piece.subspan(collected_, begin - collected_));
    const auto early = static_cast<std::size_t>(std::max<std::ptrdiff_t>(-unit.at, 0));
    sets_.resize(sets_.size() - std::min(early, sets_.size()));
  }
  if (unit.type == NalType::sps) sets_.clear();
  isCollecting_ = unit.type == NalType::sps || (unit.type == NalType::pps && !sets_.empty());
  if (isCollecting_ && unit.at < 0) collect(scan_.last(static_cast<std::size_t>(-unit.at)));
  collected_ = begin;
}

void PictureCache::collect(ByteView bytes) {
  if (sets_.size() + bytes.size() > kLongestSets) {
    sets_.clear();
    isCollecting_ = false;
    return;
  }
  sets_.insert(sets_.end(), bytes.begin(), bytes.end());
}

// Without a key picture only what may be the beginning of one is kept.
void PictureCache::keep(MediaItem item) {
  if (!isWhole_ && !head_) {
    items_.clear();
    cost_ = 0;
    return;
  }
  cost_ += item.frame.size() + kPerItem;
  items_.push_back(std::move(item));
  if (cost_ <= kMost) return;
  items_.clear();
  head_.reset();
  cost_ = 0;
  isWhole_ = false;
}

void PictureCache::clear() {
  scan_.clear();
  items_.clear();
  head_.reset();
  sets_.clear();
  videoTime_.reset();
  audioTime_.reset();
  cost_ = 0;
  isWhole_ = isCollecting_ = false;
}

}  // namespace zel::gateway
