#include "simulator/media/luma_and_chroma.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zel::simulator {
namespace {

using Rgb = std::array<int, 3>;

// 2 x 2 pixels, the two diagonals of a colour each.
std::array<int, 4> convertedOf(const Rgb& one, const Rgb& other) {
  Picture picture = blackPicture(2, 2);
  for (std::size_t i = 0; i < 12; ++i) {
    const bool first = i / 3 == 0 || i / 3 == 3;
    picture.rgb[i] = static_cast<std::uint8_t>((first ? one : other)[i % 3]);
  }
  const platform::FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_YUVJ420P;
  frame->width = frame->height = 2;
  EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
  convert(picture, *frame);
  EXPECT_EQ(frame->data[0][frame->linesize[0] + 1], frame->data[0][0]);
  return {frame->data[0][0], frame->data[0][1], frame->data[1][0], frame->data[2][0]};
}

TEST(LumaAndChromaTest, AreThoseOfBt601InFullRange) {
  EXPECT_EQ(convertedOf({0, 0, 0}, {0, 0, 0}), (std::array{0, 0, 128, 128}));
  EXPECT_EQ(convertedOf({255, 255, 255}, {255, 255, 255}), (std::array{255, 255, 128, 128}));
  EXPECT_EQ(convertedOf({255, 0, 0}, {255, 0, 0}), (std::array{76, 76, 85, 255}));   // 76.2, 84.97, 255.5
  EXPECT_EQ(convertedOf({0, 0, 255}, {0, 0, 255}), (std::array{29, 29, 255, 107}));  // 29.1, 255.5, 107.3
  EXPECT_EQ(convertedOf({0, 255, 0}, {0, 255, 0}), (std::array{150, 150, 44, 21}));  // 149.7, 43.5, 21.2
  EXPECT_EQ(convertedOf({200, 0, 0}, {0, 0, 0}), (std::array{60, 0, 111, 178}));     // 59.8; of 100: 111.1, 178
}

TEST(LumaAndChromaTest, AreTheNearestForEveryColour) {
  const auto near = [](int sample, double exact) { return std::abs(sample - std::min(exact, 255.0)) < 0.502; };
  for (int red = 0; red < 256; red += 15) {
    for (int green = 0; green < 256; green += 15) {
      for (int blue = 0; blue < 256; blue += 15) {
        const auto [luma, same, cb, cr] = convertedOf({red, green, blue}, {red, green, blue});
        const double exact = 0.299 * red + 0.587 * green + 0.114 * blue;
        ASSERT_TRUE(near(luma, exact) && near(cb, 128 + (blue - exact) / 1.772) &&
                    near(cr, 128 + (red - exact) / 1.402))
            << red << " " << green << " " << blue;
      }
    }
  }
}

}  // namespace
}  // namespace zel::simulator
