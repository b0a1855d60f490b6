#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <ZELTarkaSDK/Panorama.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/sensors.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"
#include "gateway/json/number_text.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::numberIn;
using gateway::photoFileName;
using gateway::prepareFolder;
using gateway::readFile;
using gateway::saveFile;
using Steps = std::vector<std::int8_t>;

constexpr std::size_t kMostSteps = std::tuple_size_v<decltype(aeb_info::steps)>;

// The exposure steps of a bracket.
// Errors: nothing.
std::optional<Steps> stepsIn(std::string_view text) {
  Steps steps;
  for (bool more = true; more;) {
    const std::size_t end = text.find(',');
    const auto step = numberIn<std::int8_t>(text.substr(0, end));
    if (!step || steps.size() == kMostSteps) return std::nullopt;
    steps.push_back(*step);
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
  }
  return steps;
}

std::string folderOf(const Values& values) { return values.has("--output") ? values.text("--output") : "."; }

// All pictures of a bracket are in memory before the first is saved. More than this is more than zelcam holds.
constexpr std::uint64_t kMostBytesOfABracket = std::uint64_t{384} << 20;

// One photo or bracket: requests it, waits for the reply and the pictures, and saves them.
class Shot {
 public:
  Shot(Camera& camera, const Invocation& invocation, const Sensors& sensors)
      : camera_(camera), invocation_(invocation) {
    options_ = {sensors.gps, sensors.gyro, sensors.orientation, sensors.extra};
    options_.progress = [this](const TransferProgress&) { isTaken_ = true; };
  }

  int single() {
    auto asked = camera_.photo(options_, limitsOf(invocation_.settings));
    sayAsked(invocation_.settings);
    const auto photo = asked.get();
    if (!photo) return tellFailure(isTaken_ ? "the picture" : "photo", photo.error(), invocation_.settings);
    stored_ = photo->stored;
    return save(photo->name.value_or(nameOfStored()), photo->jpeg, std::nullopt);
  }

  int bracket(const Steps& steps) {
    options_.mostBytes = kMostBytesOfABracket;
    auto asked = camera_.bracket(steps, options_, limitsOf(invocation_.settings));
    sayAsked(invocation_.settings);
    const auto series = asked.get();
    if (!series) return tellNoBracket(series.error());
    stored_ = series->stored;
    int status = kDone;
    for (std::size_t i = 0; i < series->names.size() && i < steps.size() && status == kDone; ++i) {
      const std::string& name = series->names[i];
      status = save(name.empty() ? nameOfStored() : name, series->jpegs[i], steps[i]);
    }
    return status;
  }

  // Makes panoramas of the saved photos, next to them. A failure does not affect the others. A user who asks to stop
  // gets those that are finished.
  int stitch(platform::MediaLibrary& library) {
    const auto offset = camera_.lensOffset(kMediaOffsetOfCamera, 0, limitsOf(invocation_.settings)).get();
    if (!offset) return tellFailure("photo: the lens offset", offset.error(), invocation_.settings);
    PanoramaMaker maker(library, offset->value_or(""));
    int status = kDone;
    for (const std::string& photo : saved_) {
      if (wasInterrupted()) return kInterrupted;
      status = std::max(status, stitch(maker, photo));
    }
    return status;
  }

 private:
  int tellNoBracket(const CameraError& error) const {
    if (error.reason != CameraError::Reason::platform) {
      return tellFailure(isTaken_ ? "the pictures" : "photo", error, invocation_.settings);
    }
    return complain(kRefused, "photo",
                    fmt::format("the pictures of the bracket come to more than {} MiB", kMostBytesOfABracket >> 20));
  }

  std::string nameOfStored() const { return stored_.name.value_or(""); }

  int save(const std::string& name, const ZELData& picture, std::optional<int> step) {
    std::string fault;
    const auto path = saveFile(folderOf(invocation_.values), photoFileName(name), picture.bytes(), fault);
    if (!path) return complain(kRefused, "photo", fault);
    saved_.push_back(*path);
    tell(name, picture.size(), step);
    return kDone;
  }

  void tell(const std::string& name, std::size_t bytes, std::optional<int> step) const {
    const std::string& path = saved_.back();
    if (!invocation_.settings.json) return printLine(path);
    nlohmann::ordered_json object = {{"photo", path}, {"name", name}, {"bytes", bytes}};
    if (step) object["step"] = *step;
    object["fileTime"] = stored_.time;
    object["fileSize"] = stored_.sizeBytes;
    object[std::string(key::fileSize)] = stored_.sizeBytes;  // the interface's spelling of the same
    object["fileName"] = stored_.name ? nlohmann::ordered_json(*stored_.name) : nlohmann::ordered_json();
    printJson(object);
  }

  // The photo is read again, so that those of a bracket are not in memory all at once.
  int stitch(PanoramaMaker& maker, const std::string& photo) const {
    std::string fault;
    const auto file = readFile(photo, fault);
    if (!file) return complain(kRefused, "photo", fault);
    const auto panorama = maker.panoramaOf(file->bytes(), fault);
    if (!panorama) return fault.empty() ? kRefused : complain(kRefused, "photo", photo + ": " + fault);
    const std::filesystem::path beside(photo);
    const auto path = saveFile(beside.parent_path().string(), gateway::panoramaFileName(beside.filename().string()),
                               panorama->file, fault);
    if (!path) return complain(kRefused, "photo", fault);
    return tellDone(invocation_.settings.json,
                    {{"panorama", *path}, {"of", photo}, {"width", panorama->width}, {"height", panorama->height}},
                    *path);
  }

  Camera& camera_;
  const Invocation& invocation_;
  CaptureOptions options_;
  std::atomic<bool> isTaken_ = false;  // the camera has stored it, and sends its pictures
  StoredFile stored_;
  std::vector<std::string> saved_;  // the photos' files
};

}  // namespace

int runPhoto(const Invocation& invocation) {
  const Values& values = invocation.values;
  std::string complaint;
  const auto sensors = sensorsIn(values, complaint);
  if (!sensors) return complain(kWrongUsage, "photo", complaint);
  std::optional<Steps> bracket;
  if (values.has("--bracket") && !(bracket = stepsIn(values.text("--bracket")))) {
    return complain(kWrongUsage, "photo",
                    "--bracket takes 1 to 9 exposure steps from -128 to 127 with commas between them");
  }
  return withCamera(invocation.settings, [&](Camera& camera) {
    // Checked before the camera takes a photo that could not be saved.
    if (!prepareFolder(folderOf(values), complaint)) return complain(kRefused, "photo", complaint);
    Shot shot(camera, invocation, *sensors);
    const int status = bracket ? shot.bracket(*bracket) : shot.single();
    return status == kDone && values.has("--stitch") ? shot.stitch(*camera.stack().ports().mediaLibrary) : status;
  });
}

}  // namespace zel::app
