#include "gateway/media/thumbnails.h"

#include <ZELTarkaSDK/PictureFile.h>

#include <fmt/format.h>
#include <libyuv.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace zel::gateway {
namespace {

constexpr int kThumbnailQuality = 80;

// A picture in plain memory, both sides even.
class SmallPicture final : public platform::PixelBuffer {
 public:
  SmallPicture(int width, int height, platform::PictureColour colour)
      : width_(width), height_(height), colour_(colour), bytes_(static_cast<std::size_t>(width * height * 3 / 2)) {}

  std::int32_t width() const override { return width_; }
  std::int32_t height() const override { return height_; }
  platform::PixelPlane luma() const override { return plane(bytes_.data(), height_); }
  platform::PixelPlane chroma() const override { return plane(bytes_.data() + width_ * height_, height_ / 2); }
  platform::PictureColour colour() const override { return colour_; }

  std::uint8_t* lumaBytes() { return bytes_.data(); }
  std::uint8_t* chromaBytes() { return bytes_.data() + width_ * height_; }

 private:
  platform::PixelPlane plane(const std::uint8_t* data, int rows) const {
    const auto stride = static_cast<std::size_t>(width_);
    return {data, stride, stride, static_cast<std::size_t>(rows)};
  }
  const int width_, height_;
  const platform::PictureColour colour_;
  std::vector<std::uint8_t> bytes_;
};

int even(std::int64_t side) { return static_cast<int>(std::max<std::int64_t>(2, side / 2 * 2)); }

std::optional<std::vector<std::uint8_t>> contentOf(const OpenMediaFile& file) {
  std::vector<std::uint8_t> bytes(file.file.bytes);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t some =
        ::pread(file.descriptor.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (some <= 0) return std::nullopt;
    done += static_cast<std::size_t>(some);
  }
  return bytes;
}

}  // namespace

std::optional<std::string> thumbnailOf(std::span<const std::uint8_t> jpeg, int width) {
  std::string fault;
  const auto whole = pictureOfJpeg(jpeg, fault);
  if (!whole) return std::nullopt;
  const int wide = even(std::min(width, whole->width()));
  SmallPicture small(wide, even(std::int64_t{whole->height()} * wide / whole->width()), whole->colour());
  const auto luma = whole->luma(), chroma = whole->chroma();
  if (libyuv::NV12Scale(luma.data, static_cast<int>(luma.stride), chroma.data, static_cast<int>(chroma.stride),
                        whole->width(), whole->height(), small.lumaBytes(), wide, small.chromaBytes(), wide, wide,
                        small.height(), libyuv::kFilterBox) != 0) {
    return std::nullopt;
  }
  const auto file = jpegOf(small, kThumbnailQuality);
  return file ? std::optional(std::string(file->begin(), file->end())) : std::nullopt;
}

bool Thumbnails::ask(OpenMediaFile file, int width, Done done) {
  const std::string key = fmt::format("{} {} {}", width, file.file.tag(), file.file.name);
  if (auto picture = find(key)) {
    done(std::move(picture));
    return true;
  }
  if (file.file.bytes > kMostFileBytes) {
    done(nullptr);
    return true;
  }
  const auto opened = std::make_shared<OpenMediaFile>(std::move(file));
  return worker_.post([this, opened, width, key, done = std::move(done)] {
    const auto content = contentOf(*opened);
    auto made = content ? thumbnailOf(*content, width) : std::nullopt;
    if (!made) return done(nullptr);
    const auto picture = std::make_shared<const std::string>(*std::move(made));
    keep(key, picture);
    done(picture);
  });
}

Thumbnails::Picture Thumbnails::find(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find(kept_, key, &Kept::key);
  if (found == kept_.end()) return nullptr;
  kept_.splice(kept_.begin(), kept_, found);
  return kept_.front().picture;
}

void Thumbnails::keep(const std::string& key, Picture picture) {
  const std::lock_guard lock(mutex_);
  if (std::ranges::find(kept_, key, &Kept::key) != kept_.end()) return;
  bytes_ += picture->size();
  kept_.push_front({key, std::move(picture)});
  while (bytes_ > kMostBytes) {
    bytes_ -= kept_.back().picture->size();
    kept_.pop_back();
  }
}

}  // namespace zel::gateway
