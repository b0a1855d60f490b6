#pragma once

#include <cstddef>
#include <deque>
#include <optional>

#include "base/wire.h"
#include "gateway/line/media_item.h"
#include "gateway/line/unit_scan.h"

namespace zel::gateway {

// The preview since its last key picture, for who joins later. It begins with the parameter sets, the times before the
// picture, and the picture's first byte, wherever in a frame that stands.
class PictureCache {
 public:
  // What is kept at most, in bytes with kPerItem for each frame. A longer group of pictures is not kept at all: who
  // joins then waits for the next key picture.
  static constexpr std::size_t kMost = 8u * 1024 * 1024;
  static constexpr std::size_t kPerItem = 64;

  // Adds a frame, and sets its beginsPicture. True where a key picture begins in it: items() then begins with that.
  bool add(MediaItem& item);

  // Nothing while no key picture is kept.
  const std::deque<MediaItem>& items() const { return isWhole_ ? items_ : none_; }

  // The preview ends, or another one begins.
  void clear();

 private:
  // Where the parameter sets before a key picture stand.
  struct Head {
    std::size_t index;  // among the items
    MediaItem first;    // from its first byte on
  };

  bool addVideo(MediaItem& item);
  void note(const UnitScan::Unit& unit, const MediaItem& item, std::optional<Head>& key);
  Head headAt(std::ptrdiff_t at, const MediaItem& item) const;
  void beginWith(Head head);
  void collectSets(const UnitScan::Unit& unit, ByteView piece);
  void collect(ByteView bytes);
  void keep(MediaItem item);

  UnitScan scan_;
  std::deque<MediaItem> items_;
  const std::deque<MediaItem> none_{};
  std::size_t cost_ = 0;
  bool isWhole_ = false;      // the items begin with a key picture
  std::optional<Head> head_;  // of the next key picture

  Bytes sets_;                 // the last ones, with their start codes
  bool isCollecting_ = false;  // what comes belongs to a parameter set
  std::size_t collected_ = 0;  // up to where, in the piece
  std::optional<MediaItem> videoTime_, audioTime_;
};

}  // namespace zel::gateway
