#pragma once

#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/video_decoder.h>

#include "tests/platform/ffmpeg/annex_b.h"

namespace zel::test {

struct DecodedStream {
  std::vector<platform::DecodedPicture> pictures;
  std::vector<std::size_t> unitOfPicture;  // the number of the slice in whose call it came; past the last for the rest
  int sessions = 0;
};

// Decodes as the preview does: a session for each sequence parameter set that differs, slices alone are fed. Slice n
// has the timestamp 1000 * n.
DecodedStream decodeAll(platform::VideoDecoders& decoders, const std::vector<Unit>& units);

// MD5 of the pictures' planes, luma, Cb, Cr, in turn, in hexadecimal.
std::string md5Of(const std::vector<platform::DecodedPicture>& pictures);

// A file of the folder of real media ($ZEL_TEST_MEDIA, else the one beside the project): its path, and its bytes, none
// where it is absent.
std::string realMediaPath(const std::string& name);
std::vector<std::uint8_t> realMedia(const std::string& name);

}  // namespace zel::test

#define ZEL_REAL_MEDIA(variable, name)              \
  const auto variable = zel::test::realMedia(name); \
  if (variable.empty()) GTEST_SKIP() << "$ZEL_TEST_MEDIA, a folder of recordings, has no " << name
