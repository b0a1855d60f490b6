#include "bindings/gstreamer/properties.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace zel::gst {
namespace {

enum Number : guint {
  kSerialNumber = 1,
  kFolder,
  kDirect,
  kOutput,
  kResolution,
  kWidth,
  kHeight,
  kRemovePurple,
  kDecoderThreads,
  kOpenTimeout,
  kStartTimeout,
  kOnLoss,
  kLossTimeout,
  kNumBuffers,
};

constexpr gint kLargestSide = 16'384;
constexpr guint kMostDecoderThreads = 16;

constexpr auto kReadWrite =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_READY);

gint number(Output output) { return static_cast<gint>(output); }
gint number(OnLoss onLoss) { return static_cast<gint>(onLoss); }

GType outputType() {
  static const GEnumValue values[] = {{number(Output::camera), "The camera's own H.264, as it comes", "camera"},
                                      {number(Output::raw), "Decoded pictures of both lenses, NV12", "raw"},
                                      {number(Output::stitched), "Stitched panoramas, NV12", "stitched"},
                                      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GstZelCamOutput", values);
  return type;
}

GType onLossType() {
  static const GEnumValue values[] = {
      {number(OnLoss::wait), "Wait for the camera, and go on with a discontinuity", "wait"},
      {number(OnLoss::error), "End with an error", "error"},
      {number(OnLoss::eos), "End the stream as if it were complete", "eos"},
      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GstZelCamOnLoss", values);
  return type;
}

// Names of the preview's formats, such as 1440x720-30, which live as long as the type.
GType resolutionType() {
  struct Names {
    std::array<std::string, kPreviewFormats.size()> nicks, names;
    std::array<GEnumValue, kPreviewFormats.size() + 1> values{};
  };
  static const GType type = [] {
    auto* const all = new Names;
    for (std::size_t code = 0; code < kPreviewFormats.size(); ++code) {
      const PreviewFormat& format = kPreviewFormats.at(code);
      const std::string size = std::to_string(format.width) + "x" + std::to_string(format.height);
      all->nicks.at(code) = size + "-" + std::to_string(format.fps);
      all->names.at(code) = size + " at " + std::to_string(format.fps) + " pictures a second";
      all->values.at(code) = {static_cast<gint>(code), all->names.at(code).c_str(), all->nicks.at(code).c_str()};
    }
    return g_enum_register_static("GstZelCamResolution", all->values.data());
  }();
  return type;
}

void installCamera(GObjectClass& type) {
  const auto add = [&](guint property, GParamSpec* spec) { g_object_class_install_property(&type, property, spec); };
  add(kSerialNumber,
      g_param_spec_string("serial-number", "Serial number",
                          "The camera's serial number; empty takes the first that is attached", "", kReadWrite));
  add(kFolder,
      g_param_spec_string("folder", "Folder",
                          "Folder of the accessory bus; empty takes $ZEL_ACCESSORIES or its default", "", kReadWrite));
  add(kDirect, g_param_spec_boolean("direct", "Direct",
                                    "Whether the camera is opened by this process alone, never through a gateway that "
                                    "has it",
                                    FALSE, kReadWrite));
  add(kOpenTimeout, g_param_spec_uint("open-timeout", "Open timeout",
                                      "How long the camera's first data are waited for, in milliseconds", 1, G_MAXINT,
                                      Settings().openTimeout, kReadWrite));
  add(kStartTimeout, g_param_spec_uint("start-timeout", "Start timeout",
                                       "How long the first picture and sound are waited for, in milliseconds", 1,
                                       G_MAXINT, Settings().startTimeout, kReadWrite));
  add(kOnLoss, g_param_spec_enum("on-loss", "On loss", "What happens when the camera is lost", onLossType(),
                                 number(OnLoss::wait), kReadWrite));
  add(kLossTimeout, g_param_spec_uint("loss-timeout", "Loss timeout",
                                      "With on-loss=wait: how long the camera is waited for before that is an error, "
                                      "in milliseconds; 0 waits forever",
                                      0, G_MAXINT, Settings().lossTimeout, kReadWrite));
}

void installPictures(GObjectClass& type) {
  const auto add = [&](guint property, GParamSpec* spec) { g_object_class_install_property(&type, property, spec); };
  add(kOutput, g_param_spec_enum("output", "Output", "What the video pad gives", outputType(), number(Output::camera),
                                 kReadWrite));
  add(kResolution, g_param_spec_enum("resolution", "Resolution", "Size and rate of the camera's preview",
                                     resolutionType(), kSmallestPreview, kReadWrite));
  add(kWidth, g_param_spec_int("width", "Width", "Width of stitched pictures in pixels, an even number", 2,
                               kLargestSide, Settings().width, kReadWrite));
  add(kHeight, g_param_spec_int("height", "Height", "Height of stitched pictures in pixels, an even number", 2,
                                kLargestSide, Settings().height, kReadWrite));
  add(kRemovePurple,
      g_param_spec_boolean("remove-purple", "Remove purple",
                           "Whether purple fringes are removed from stitched pictures", FALSE, kReadWrite));
  add(kDecoderThreads, g_param_spec_uint("decoder-threads", "Decoder threads",
                                         "Threads that decode raw and stitched pictures; each above 1 delays them by "
                                         "a picture",
                                         1, kMostDecoderThreads, 1, kReadWrite));
  add(kNumBuffers,
      g_param_spec_int("num-buffers", "Number of buffers", "Pictures after which the stream ends; -1 does not end it",
                       -1, G_MAXINT, -1, kReadWrite));
  add(kStatistics,
      g_param_spec_boxed("stats", "Statistics",
                         "What has come and what was dropped, in a structure; see docs/gstreamer.md",
                         GST_TYPE_STRUCTURE, static_cast<GParamFlags>(G_PARAM_READABLE | G_PARAM_STATIC_STRINGS)));
}

std::string textOf(const GValue& value) {
  const gchar* const text = g_value_get_string(&value);
  return text != nullptr ? text : "";
}

}  // namespace

void installProperties(GObjectClass& type) {
  installCamera(type);
  installPictures(type);
}

// GObject has checked the ranges.
bool setProperty(Settings& settings, guint property, const GValue& value) {
  switch (property) {
    case kSerialNumber:
      return settings.serialNumber = textOf(value), true;
    case kFolder:
      return settings.folder = textOf(value), true;
    case kDirect:
      return settings.direct = g_value_get_boolean(&value) != FALSE, true;
    case kOutput:
      return settings.output = static_cast<Output>(g_value_get_enum(&value)), true;
    case kResolution:
      return settings.resolution = static_cast<std::uint8_t>(g_value_get_enum(&value)), true;
    case kWidth:
      return settings.width = g_value_get_int(&value), true;
    case kHeight:
      return settings.height = g_value_get_int(&value), true;
    case kRemovePurple:
      return settings.removePurple = g_value_get_boolean(&value) != FALSE, true;
    case kDecoderThreads:
      return settings.decoderThreads = g_value_get_uint(&value), true;
    case kOpenTimeout:
      return settings.openTimeout = g_value_get_uint(&value), true;
    case kStartTimeout:
      return settings.startTimeout = g_value_get_uint(&value), true;
    case kOnLoss:
      return settings.onLoss = static_cast<OnLoss>(g_value_get_enum(&value)), true;
    case kLossTimeout:
      return settings.lossTimeout = g_value_get_uint(&value), true;
    case kNumBuffers:
      return settings.numBuffers = g_value_get_int(&value), true;
    default:
      return false;
  }
}

bool getProperty(const Settings& settings, guint property, GValue& value) {
  switch (property) {
    case kSerialNumber:
      return g_value_set_string(&value, settings.serialNumber.c_str()), true;
    case kFolder:
      return g_value_set_string(&value, settings.folder.c_str()), true;
    case kDirect:
      return g_value_set_boolean(&value, settings.direct ? TRUE : FALSE), true;
    case kOutput:
      return g_value_set_enum(&value, number(settings.output)), true;
    case kResolution:
      return g_value_set_enum(&value, settings.resolution), true;
    case kWidth:
      return g_value_set_int(&value, settings.width), true;
    case kHeight:
      return g_value_set_int(&value, settings.height), true;
    case kRemovePurple:
      return g_value_set_boolean(&value, settings.removePurple ? TRUE : FALSE), true;
    case kDecoderThreads:
      return g_value_set_uint(&value, settings.decoderThreads), true;
    case kOpenTimeout:
      return g_value_set_uint(&value, settings.openTimeout), true;
    case kStartTimeout:
      return g_value_set_uint(&value, settings.startTimeout), true;
    case kOnLoss:
      return g_value_set_enum(&value, number(settings.onLoss)), true;
    case kLossTimeout:
      return g_value_set_uint(&value, settings.lossTimeout), true;
    case kNumBuffers:
      return g_value_set_int(&value, settings.numBuffers), true;
    default:
      return false;
  }
}

}  // namespace zel::gst
