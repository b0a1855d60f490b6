#include "platform/render/nadir_logo.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/render/lens_model.h"

namespace zel::render {
namespace {

// Premultiplied by alpha, so that transparent pixels do not colour their neighbours. 0 to 255.
struct Colour {
  float red = 0, green = 0, blue = 0, alpha = 0;
};

Colour operator+(const Colour& a, const Colour& b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue, a.alpha + b.alpha};
}
Colour operator*(const Colour& a, float by) { return {a.red * by, a.green * by, a.blue * by, a.alpha * by}; }

struct Canvas {
  int width, height;
  std::vector<Colour> pixels;

  // Transparent outside.
  Colour at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return {};
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
  }

  Colour between(double x, double y) const {
    const double left = std::floor(x), top = std::floor(y);
    const int column = static_cast<int>(left), row = static_cast<int>(top);
    const auto right = static_cast<float>(x - left), down = static_cast<float>(y - top);
    return (at(column, row) * (1 - right) + at(column + 1, row) * right) * (1 - down) +
           (at(column, row + 1) * (1 - right) + at(column + 1, row + 1) * right) * down;
  }
};

Canvas canvasOf(const LogoImage& image) {
  Canvas canvas{image.width, image.height, {}};
  canvas.pixels.reserve(image.rgba.size() / 4);
  for (std::size_t at = 0; at < image.rgba.size(); at += 4) {
    const auto alpha = static_cast<float>(image.rgba[at + 3]);
    const Colour solid{static_cast<float>(image.rgba[at]), static_cast<float>(image.rgba[at + 1]),
                       static_cast<float>(image.rgba[at + 2]), 255};
    canvas.pixels.push_back(solid * (alpha / 255));
  }
  return canvas;
}

Canvas halved(const Canvas& whole) {
  Canvas half{(whole.width + 1) / 2, (whole.height + 1) / 2, {}};
  for (int y = 0; y < half.height; ++y) {
    for (int x = 0; x < half.width; ++x) {
      const Colour sum = whole.at(2 * x, 2 * y) + whole.at(2 * x + 1, 2 * y) + whole.at(2 * x, 2 * y + 1) +
                         whole.at(2 * x + 1, 2 * y + 1);
      half.pixels.push_back(sum * 0.25f);
    }
  }
  return half;
}

int longerSide(const Canvas& canvas) { return std::max(canvas.width, canvas.height); }

// Scaled down to the size on the picture at most, to avoid flicker.
Canvas fitted(const LogoImage& image, PictureSize output) {
  Canvas canvas = canvasOf(image);
  const double rows = NadirLogo::kHalfSide / 90 * output.height;  // across the logo
  while (longerSide(canvas) > 2 * rows && longerSide(canvas) > 1) canvas = halved(canvas);
  return canvas;
}

struct Yuv {
  float luma, cb, cr;  // premultiplied by alpha, including the 128 in cb and cr
};

Yuv yuvOf(const Colour& c, const platform::LumaShares& share) {
  const auto red = static_cast<float>(share.red), blue = static_cast<float>(share.blue);
  const auto green = static_cast<float>(1 - share.red - share.blue);
  const float luma = red * c.red + green * c.green + blue * c.blue;
  const float middle = 128 * c.alpha / 255;
  return {luma, (c.blue - luma) / (2 * (1 - blue)) + middle, (c.red - luma) / (2 * (1 - red)) + middle};
}

std::uint8_t byteOf(float value) { return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L)); }

// Looks up the logo for the centres of a plane's pixels.
class Viewer {
 public:
  Viewer(const Canvas& canvas, double angle, std::size_t width, std::size_t height)
      : canvas_(canvas),
        sine_(std::sin(angle * kRadians)),
        cosine_(std::cos(angle * kRadians)),
        width_(width),
        height_(height) {}

  Colour at(std::size_t column, std::size_t row) const {
    const double aside = 180 * (1 - (static_cast<double>(row) + 0.5) / static_cast<double>(height_));
    const double longitude = ((static_cast<double>(column) + 0.5) / static_cast<double>(width_) * 360 - 180) * kRadians;
    const double radius = aside / NadirLogo::kHalfSide * longerSide(canvas_) / 2;
    const double right = radius * std::sin(longitude), ahead = radius * std::cos(longitude);
    return canvas_.between(canvas_.width / 2.0 + right * cosine_ - ahead * sine_ - 0.5,
                           canvas_.height / 2.0 - right * sine_ - ahead * cosine_ - 0.5);
  }

 private:
  const Canvas& canvas_;
  const double sine_, cosine_;
  const std::size_t width_, height_;
};

// A logo's corners are farther from the nadir than the middles of its sides.
std::size_t firstRowOf(std::size_t height) {
  const double share = NadirLogo::kHalfSide * std::numbers::sqrt2 / 180;
  return static_cast<std::size_t>(std::floor(static_cast<double>(height) * (1 - share)));
}

}  // namespace

bool isUsable(const LogoImage& image) {
  if (std::min(image.width, image.height) < 1 || std::max(image.width, image.height) > LogoImage::kLargestSide)
    return false;
  return image.rgba.size() ==
         std::size_t{4} * static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
}

NadirLogo::NadirLogo(const LogoImage& image, double angle, PictureSize output, platform::ColourMatrix matrix) {
  const platform::LumaShares share = platform::lumaSharesOf(matrix);
  const Canvas canvas = fitted(image, output);
  const auto width = static_cast<std::size_t>(output.width), height = static_cast<std::size_t>(output.height);
  luma_.firstRow = firstRowOf(height);
  chroma_.firstRow = luma_.firstRow / 2;
  luma_.rowBytes = chroma_.rowBytes = width;
  const Viewer luma(canvas, angle, width, height), chroma(canvas, angle, width / 2, height / 2);
  const auto add = [](Plane& plane, float value, float alpha) {
    plane.values.push_back(byteOf(value));
    plane.through.push_back(static_cast<std::uint8_t>(255 - byteOf(alpha)));
  };
  for (std::size_t row = luma_.firstRow; row < height; ++row) {
    for (std::size_t column = 0; column < width; ++column) {
      const Colour colour = luma.at(column, row);
      add(luma_, yuvOf(colour, share).luma, colour.alpha);
    }
  }
  for (std::size_t row = chroma_.firstRow; row < height / 2; ++row) {
    for (std::size_t column = 0; column < width / 2; ++column) {
      const Colour colour = chroma.at(column, row);
      add(chroma_, yuvOf(colour, share).cb, colour.alpha);
      add(chroma_, yuvOf(colour, share).cr, colour.alpha);
    }
  }
}

void NadirLogo::draw(const Plane& plane, std::size_t row, std::uint8_t* out) {
  const std::size_t first = (row - plane.firstRow) * plane.rowBytes;
  const std::uint8_t* values = plane.values.data() + first;
  const std::uint8_t* through = plane.through.data() + first;
  for (std::size_t i = 0; i < plane.rowBytes; ++i) {
    // Rounded division by 255, without a division.
    const unsigned product = static_cast<unsigned>(out[i]) * through[i] + 128;
    out[i] = static_cast<std::uint8_t>(std::min(255u, values[i] + ((product + (product >> 8)) >> 8)));
  }
}

}  // namespace zel::render
