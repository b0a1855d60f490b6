#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "gateway/media/media_folder.h"
#include "gateway/media/worker.h"

namespace zel::gateway {

inline constexpr std::int64_t kLeastThumbnail = 16, kMostThumbnail = 1024;  // pixels of width

// A JPEG picture of that width, as high as the file's picture asks for. Both sides are even, as the encoder needs them.
//
// Errors: nothing where the file is no JPEG, or no memory is left.
std::optional<std::string> thumbnailOf(std::span<const std::uint8_t> jpeg, int width);

// Small pictures of the folder's photos, made once and kept in memory, within bounds.
//
// Thread: any thread.
class Thumbnails {
 public:
  using Picture = std::shared_ptr<const std::string>;
  // picture: null where the file is no picture.
  using Done = std::function<void(Picture picture)>;

  static constexpr std::size_t kMostBytes = std::size_t{16} << 20;          // of all that are kept
  static constexpr std::uint64_t kMostFileBytes = std::uint64_t{64} << 20;  // of a photo

  explicit Thumbnails(Worker& worker) : worker_(worker) {}

  // Calls `done` with the picture: at once where it is kept, else on the worker's thread. False where too many wait.
  //
  // Owner: the object must outlive the worker's tasks.
  bool ask(OpenMediaFile file, int width, Done done);

 private:
  struct Kept {
    std::string key;
    Picture picture;
  };
  Picture find(const std::string& key);
  void keep(const std::string& key, Picture picture);

  Worker& worker_;
  std::mutex mutex_;
  std::list<Kept> kept_;  // the latest used first
  std::size_t bytes_ = 0;
};

}  // namespace zel::gateway
