#include "apps/zelcam/command_line/live_options.h"

#include <fmt/format.h>

#include <ZELTarkaSDK/PictureFile.h>

#include <algorithm>

#include "apps/zelcam/command_line/decoder_threads.h"
#include "apps/zelcam/command_line/picture_size.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::readFile;

std::string complaintOfSize(const Values& values, LiveOptions& options) {
  if (!values.has("--size")) return {};
  const auto size = pictureSizeIn(values.text("--size"));
  if (!size || size->width < 16 || size->height < 16) {
    return fmt::format("--size takes WIDTHxHEIGHT, both even and each from 16 to {}", kLargestPictureSide);
  }
  options.stitched.width = size->width;
  options.stitched.height = size->height;
  return {};
}

std::string complaintOfOutputs(const Values& values, LiveOptions& options) {
  for (const std::string& text : values.list("--output")) {
    const auto address = parseOutputAddress(text);
    if (!address) return fmt::format("{} is no output; an output is {}", text, kOutputKinds);
    if (std::ranges::count(options.outputs, *address) != 0) return fmt::format("-o {} is given twice", text);
    options.outputs.push_back(*address);
    options.outputTexts.push_back(text);
  }
  return options.outputs.empty() ? fmt::format("-o tells where the stream goes: {}", kOutputKinds) : "";
}

std::string complaintOfMixture(const Values& values, const LiveOptions& options) {
  const bool changesPictures = values.has("--size") || values.has("--bitrate") || values.has("--logo") ||
                               values.has("--logo-angle") || values.has("--remove-purple") ||
                               values.has("--decoder-threads");
  if (!options.stitch && changesPictures) {
    return "--no-stitch passes the camera's pictures on as they are: --size, --bitrate, --logo, --logo-angle, "
           "--remove-purple and --decoder-threads do not go with it";
  }
  if (values.has("--logo-angle") && !values.has("--logo")) return "--logo-angle needs --logo";
  return {};
}

// Errors: nothing; `complaint` then names the file and the fault.
std::optional<platform::RgbaImage> logoIn(const std::string& path, std::string& complaint) {
  const auto file = readFile(path, complaint);
  if (!file) return std::nullopt;
  auto image = imageOfPng(file->bytes(), complaint);
  if (!image) complaint = fmt::format("{} is {}", path, complaint);
  return image;
}

}  // namespace

bool LiveOptions::usesStandardOutput() const {
  return std::ranges::any_of(outputs, [](const auto& one) { return one.kind == OutputKind::standardOutput; });
}

std::optional<LiveOptions> liveOptionsIn(const Values& values, std::string& complaint) {
  LiveOptions options;
  options.resolution = static_cast<int>(values.integer("--resolution").value_or(options.resolution));
  options.stitched.bitrate = values.integer("--bitrate").value_or(options.stitched.bitrate);
  options.decoderThreads = decoderThreads(values, options.resolution);
  options.duration = values.number("--duration");
  options.stitch = !values.has("--no-stitch");
  options.stitched.logoAngle = values.number("--logo-angle").value_or(0);
  options.stitched.removePurple = values.has("--remove-purple");
  options.reconnect = values.number("--reconnect");
  complaint = complaintOfOutputs(values, options);
  if (complaint.empty()) complaint = complaintOfSize(values, options);
  if (complaint.empty()) complaint = complaintOfMixture(values, options);
  if (!complaint.empty()) return std::nullopt;
  if (values.has("--logo") && !(options.stitched.logo = logoIn(values.text("--logo"), complaint))) return std::nullopt;
  return options;
}

}  // namespace zel::app
