#include "pictures/panorama_metadata.h"

#include <exempi/xmp.h>
#include <exempi/xmpconsts.h>

#include <fmt/format.h>

#include <memory>
#include <utility>

namespace zel {
namespace {

constexpr char kSpace[] = "http://ns.google.com/photos/1.0/panorama/";

struct Free {
  void operator()(XmpPtr packet) const { xmp_free(packet); }
  void operator()(XmpStringPtr text) const { xmp_string_free(text); }
};
using Packet = std::unique_ptr<std::remove_pointer_t<XmpPtr>, Free>;
using Text = std::unique_ptr<std::remove_pointer_t<XmpStringPtr>, Free>;

bool describe(XmpPtr packet, int width, int height, std::optional<double> heading) {
  const std::pair<const char*, int> numbers[] = {
      {"FullPanoWidthPixels", width},         {"FullPanoHeightPixels", height},         {"CroppedAreaLeftPixels", 0},
      {"CroppedAreaImageWidthPixels", width}, {"CroppedAreaImageHeightPixels", height}, {"CroppedAreaTopPixels", 0}};
  bool done = xmp_set_property(packet, kSpace, "ProjectionType", "equirectangular", 0) &&
              xmp_set_property_bool(packet, kSpace, "UsePanoramaViewer", true, 0);
  for (const auto& [name, value] : numbers) done = done && xmp_set_property_int32(packet, kSpace, name, value, 0);
  if (!heading) return done;
  return done && xmp_set_property(packet, kSpace, "PoseHeadingDegrees", fmt::format("{:.2f}", *heading).c_str(), 0);
}

}  // namespace

std::optional<std::string> panoramaPacket(int width, int height, std::optional<double> heading) {
  static const bool isReady = xmp_init() && xmp_register_namespace(kSpace, "GPano", nullptr);
  const Packet packet(isReady ? xmp_new_empty() : nullptr);
  const Text text(xmp_string_new());
  if (!packet || !text || !describe(packet.get(), width, height, heading)) return std::nullopt;
  if (!xmp_serialize(packet.get(), text.get(), XMP_SERIAL_USECOMPACTFORMAT, 0)) return std::nullopt;
  return std::string(xmp_string_cstr(text.get()));
}

}  // namespace zel
