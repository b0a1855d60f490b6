#include "bindings/gstreamer/caps.h"

#include <ZELTarkaSDK/AudioConfig.h>
#include <gst/pbutils/pbutils.h>
#include <gst/video/video.h>

namespace zel::gst {
namespace {

constexpr std::size_t kUnitHeader = 1;  // of a sequence parameter set, before its profile

void setColours(GstCaps& caps, const VideoColour& colour) {
  GstVideoColorimetry colours;
  colours.range = colour.fullRange ? GST_VIDEO_COLOR_RANGE_0_255 : GST_VIDEO_COLOR_RANGE_16_235;
  colours.matrix = gst_video_color_matrix_from_iso(colour.matrix);
  colours.transfer = gst_video_transfer_function_from_iso(colour.transfer);
  colours.primaries = gst_video_color_primaries_from_iso(colour.primaries);
  gchar* const text = gst_video_colorimetry_to_string(&colours);
  gst_caps_set_simple(&caps, "colorimetry", G_TYPE_STRING, text, nullptr);
  g_free(text);
}

GstCaps* described(const char* type, int width, int height, int rate) {
  return gst_caps_new_simple(type, "width", G_TYPE_INT, width, "height", G_TYPE_INT, height, "framerate",
                             GST_TYPE_FRACTION, rate, 1, "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1,
                             "interlace-mode", G_TYPE_STRING, "progressive", nullptr);
}

}  // namespace

GstCaps* capsOfVideo(const StreamHeaders& headers, int rate) {
  GstCaps* const caps = described("video/x-h264", headers.width, headers.height, rate);
  gst_caps_set_simple(caps, "stream-format", G_TYPE_STRING, "byte-stream", "alignment", G_TYPE_STRING, "au", nullptr);
  const auto sps = headers.sps.bytes().subspan(std::min(kUnitHeader, headers.sps.size()));
  gst_codec_utils_h264_caps_set_level_and_profile(caps, sps.data(), static_cast<guint>(sps.size()));
  setColours(*caps, headers.colour);
  return caps;
}

GstCaps* capsOfAudio(const StreamHeaders& headers) {
  const auto bytes = headers.audioConfig.bytes();
  const AudioConfig config = parseAudioConfig(bytes).value_or(AudioConfig{48'000, 2});
  GstBuffer* const data = gst_buffer_new_memdup(bytes.data(), bytes.size());
  GstCaps* const caps =
      gst_caps_new_simple("audio/mpeg", "mpegversion", G_TYPE_INT, 4, "stream-format", G_TYPE_STRING, "raw", "framed",
                          G_TYPE_BOOLEAN, TRUE, "rate", G_TYPE_INT, config.rate, "channels", G_TYPE_INT,
                          config.channels, "codec_data", GST_TYPE_BUFFER, data, nullptr);
  gst_buffer_unref(data);
  gst_codec_utils_aac_caps_set_level_and_profile(caps, bytes.data(), static_cast<guint>(bytes.size()));
  return caps;
}

GstCaps* capsOfPictures(const platform::PixelBuffer& picture, int rate) {
  GstCaps* const caps = described("video/x-raw", picture.width(), picture.height(), rate);
  gst_caps_set_simple(caps, "format", G_TYPE_STRING, "NV12", nullptr);
  const platform::PictureColour colour = picture.colour();
  setColours(*caps, {true, static_cast<std::uint8_t>(colour.primaries), static_cast<std::uint8_t>(colour.transfer),
                     static_cast<std::uint8_t>(colour.matrix)});
  return caps;
}

}  // namespace zel::gst
