#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <ZELTarkaSDK/Panorama.h>
#include <ZELTarkaSDK/PictureFile.h>

#include "apps/zelcam/command_line/number_text.h"
#include "apps/zelcam/command_line/sensors.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/file.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

using Text = std::optional<std::string>;
using Stored = Answer<std::optional<std::uint32_t>, std::optional<std::uint64_t>, Text>;
using Photo = Answer<Text, std::optional<ZELData>>;
using Series = Answer<std::vector<std::string>, std::shared_ptr<const ZELDataArray>>;

// The exposure steps of a bracket.
// Errors: nothing.
std::optional<aeb_info> bracketIn(std::string_view text) {
  aeb_info bracket;
  std::uint8_t count = 0;
  for (bool more = true; more; ++count) {
    const std::size_t end = text.find(',');
    const auto step = numberIn<std::int8_t>(text.substr(0, end));
    if (!step || count == bracket.steps.size()) return std::nullopt;
    bracket.steps[count] = *step;
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
  }
  bracket.count = count;
  return bracket;
}

std::string folderOf(const Values& values) { return values.has("--output") ? values.text("--output") : "."; }

// All pictures of a bracket are in memory before the first is saved. More than this is more than zelcam holds.
constexpr std::uint64_t kMostBytesOfABracket = std::uint64_t{384} << 20;

// Stops a camera that sends more, while it sends.
class BracketBound {
 public:
  explicit BracketBound(CameraLink& link) : link_(link), before_(photoBytes()) {
    link.bus().readingBound().set([this] { return isTooMuch(); });
  }
  ~BracketBound() { link_.bus().readingBound().set(nullptr); }
  BracketBound(const BracketBound&) = delete;
  BracketBound& operator=(const BracketBound&) = delete;

  bool isPassed() const { return isPassed_.load(); }

 private:
  std::uint64_t photoBytes() const {
    return link_.stack().statistics().bytes[static_cast<std::size_t>(FrameType::photo)];
  }

  bool isTooMuch() {
    if (photoBytes() - before_ <= kMostBytesOfABracket) return isPassed();
    isPassed_.store(true);
    link_.wake();
    return true;
  }

  CameraLink& link_;
  const std::uint64_t before_;
  std::atomic<bool> isPassed_ = false;
};

// "folder/IMG_1.jpg" becomes "IMG_1-360.jpg". A panorama is always a JPEG file.
std::string panoramaName(std::filesystem::path photo) {
  if (pictureFormOf(photo.string()) != PictureForm::jpeg) photo.replace_extension(".jpg");
  return fileNameWith(photo.filename().string(), "-360", NAME_MAX);
}

// One photo or bracket: requests it, waits for the reply and the pictures, and saves them.
class Shot {
 public:
  Shot(CameraLink& link, const Invocation& invocation) : link_(link), invocation_(invocation) {}

  int single(const Sensors& sensors) {
    const auto photo = std::make_shared<Photo>();
    ZELCameraUCD& ucd = link_.stack().ucd();
    const ZELCameraUCD::CaptureBlock stored = keepIn(stored_, link_.platform());
    const ZELPhotoBlock photoData = keepIn(photo, link_.platform());
    if (sensors.extra) {
      ucd.msgCmdShutterExtraWithGps(sensors.gps, sensors.gyro, sensors.orientation, sensors.extra, stored, photoData);
    } else {
      ucd.msgCmdShutterWithGps(sensors.gps, sensors.gyro, sensors.orientation, stored, photoData);
    }
    link_.sayAsked();
    if (const int status = waitFor(*stored_, "photo"); status != kDone) return status;
    if (const int status = waitFor(*photo, "the picture"); status != kDone) return status;
    const auto& [name, picture] = photo->values;
    return save(name.value_or(nameOfStored()), picture.value_or(ZELData()), std::nullopt);
  }

  int bracket(const Sensors& sensors, const aeb_info& steps) {
    const auto series = std::make_shared<Series>();
    const BracketBound bound(link_);
    link_.stack().ucd().msgCmdShutterAEBWithGps(sensors.gps, sensors.gyro, sensors.orientation, steps, sensors.extra,
                                                keepIn(stored_, link_.platform()), keepIn(series, link_.platform()));
    link_.sayAsked();
    if (const int status = waitFor(*stored_, "photo", &bound); status != kDone) return status;
    if (const int status = waitFor(*series, "the pictures", &bound); status != kDone) return status;
    const auto& [names, pictures] = series->values;
    int status = kDone;
    for (std::size_t i = 0; i < names.size() && i < steps.count && status == kDone; ++i) {
      status = save(names[i].empty() ? nameOfStored() : names[i], pictures->at(i), steps.steps[i]);
    }
    return status;
  }

  // Makes panoramas of the saved photos, next to them. A failure does not affect the others. A user who asks to stop
  // gets those that are finished.
  int stitch(platform::MediaLibrary& library) {
    std::string offset;
    if (const int status = askLensOffset(link_, "photo", 0, offset); status != kDone) return status;
    PanoramaMaker maker(library, offset);
    int status = kDone;
    for (const std::string& photo : saved_) {
      if (wasInterrupted()) return kInterrupted;
      status = std::max(status, stitch(maker, photo));
    }
    return status;
  }

 private:
  template <class Any>
  int waitFor(const Any& answer, std::string_view what, const BracketBound* bound = nullptr) {
    const double timeout = invocation_.settings.timeout;
    const Waited end = link_.waitFor([&] { return answer.done || (bound != nullptr && bound->isPassed()); }, timeout);
    // The camera that is not read any more is soon taken for lost.
    if (bound != nullptr && bound->isPassed() && (!answer.done || answer.error)) {
      return complain(kRefused, "photo",
                      fmt::format("the pictures of the bracket come to more than {} MiB", kMostBytesOfABracket >> 20));
    }
    return tellEnd(what, end, answer.error, invocation_.settings);
  }

  std::string nameOfStored() const { return std::get<2>(stored_->values).value_or(""); }

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
    const auto& [time, size, storedName] = stored_->values;
    nlohmann::ordered_json object = {{"photo", path}, {"name", name}, {"bytes", bytes}};
    if (step) object["step"] = *step;
    object["fileTime"] = time.value_or(0);
    object["fileSize"] = size.value_or(0);
    object[std::string(key::fileSize)] = size.value_or(0);  // the interface's spelling of the same
    object["fileName"] = storedName ? nlohmann::ordered_json(*storedName) : nlohmann::ordered_json();
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
    const auto path = saveFile(beside.parent_path().string(), panoramaName(beside), panorama->file, fault);
    if (!path) return complain(kRefused, "photo", fault);
    return tellDone(invocation_.settings.json,
                    {{"panorama", *path}, {"of", photo}, {"width", panorama->width}, {"height", panorama->height}},
                    *path);
  }

  CameraLink& link_;
  const Invocation& invocation_;
  const std::shared_ptr<Stored> stored_ = std::make_shared<Stored>();
  std::vector<std::string> saved_;  // the photos' files
};

}  // namespace

int runPhoto(const Invocation& invocation) {
  const Values& values = invocation.values;
  std::string complaint;
  const auto sensors = sensorsIn(values, complaint);
  if (!sensors) return complain(kWrongUsage, "photo", complaint);
  std::optional<aeb_info> bracket;
  if (values.has("--bracket") && !(bracket = bracketIn(values.text("--bracket")))) {
    return complain(kWrongUsage, "photo",
                    "--bracket takes 1 to 9 exposure steps from -128 to 127 with commas between them");
  }
  return withCamera(invocation.settings, [&](CameraLink& link) {
    // Checked before the camera takes a photo that could not be saved.
    if (!prepareFolder(folderOf(values), complaint)) return complain(kRefused, "photo", complaint);
    Shot shot(link, invocation);
    const int status = bracket ? shot.bracket(*sensors, *bracket) : shot.single(*sensors);
    return status == kDone && values.has("--stitch") ? shot.stitch(*link.bus().ports().mediaLibrary) : status;
  });
}

}  // namespace zel::app
