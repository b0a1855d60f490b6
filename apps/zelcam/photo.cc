#include "apps/zelcam/photo.h"

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "apps/zelcam/answer.h"
#include "apps/zelcam/bus.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/file.h"
#include "apps/zelcam/lens_offset.h"
#include "apps/zelcam/number_text.h"
#include "apps/zelcam/output.h"
#include "apps/zelcam/panorama.h"
#include "apps/zelcam/picture_file.h"
#include "apps/zelcam/sensors.h"

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

// A photo's file.
struct Saved {
  std::string path;
  ZELData picture;
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
      ucd.newMsgCmdShutterExtraWithGps(sensors.gps, sensors.gyro, sensors.orientation, sensors.extra, stored,
                                       photoData);
    } else {
      ucd.newMsgCmdShutterWithGps(sensors.gps, sensors.gyro, sensors.orientation, stored, photoData);
    }
    link_.sayAsked();
    if (const int status = waitFor(*stored_, "photo"); status != kDone) return status;
    if (const int status = waitFor(*photo, "the picture"); status != kDone) return status;
    const auto& [name, picture] = photo->values;
    return save(name.value_or(nameOfStored()), picture.value_or(ZELData()), std::nullopt);
  }

  int bracket(const Sensors& sensors, const aeb_info& steps) {
    const auto series = std::make_shared<Series>();
    link_.stack().ucd().newMsgCmdShutterAEBWithGps(sensors.gps, sensors.gyro, sensors.orientation, steps, sensors.extra,
                                                   keepIn(stored_, link_.platform()), keepIn(series, link_.platform()));
    link_.sayAsked();
    if (const int status = waitFor(*stored_, "photo"); status != kDone) return status;
    if (const int status = waitFor(*series, "the pictures"); status != kDone) return status;
    const auto& [names, pictures] = series->values;
    int status = kDone;
    for (std::size_t i = 0; i < names.size() && i < steps.count && status == kDone; ++i) {
      status = save(names[i].empty() ? nameOfStored() : names[i], pictures->at(i), steps.steps[i]);
    }
    return status;
  }

  // Makes panoramas of the saved photos, next to them. A failure does not affect the others.
  int stitch(platform::MediaLibrary& library) {
    std::string offset;
    if (const int status = askLensOffset(link_, "photo", 0, offset); status != kDone) return status;
    PanoramaMaker maker(library, offset);
    int status = kDone;
    for (const Saved& photo : saved_) status = std::max(status, stitch(maker, photo));
    return status;
  }

 private:
  template <class Any>
  int waitFor(const Any& answer, std::string_view what) {
    const double timeout = invocation_.settings.timeout;
    const Waited end = link_.waitFor([&answer] { return answer.done; }, timeout);
    return tellEnd(what, end, answer.error, invocation_.settings);
  }

  std::string nameOfStored() const { return std::get<2>(stored_->values).value_or(""); }

  int save(const std::string& name, const ZELData& picture, std::optional<int> step) {
    std::string fault;
    const auto path = saveFile(folderOf(invocation_.values), photoFileName(name), picture.bytes(), fault);
    if (!path) return complain(kRefused, "photo", fault);
    saved_.push_back({*path, picture});
    tell(name, picture, step);
    return kDone;
  }

  void tell(const std::string& name, const ZELData& picture, std::optional<int> step) const {
    const std::string& path = saved_.back().path;
    if (!invocation_.settings.json) return printLine(path);
    const auto& [time, size, storedName] = stored_->values;
    nlohmann::ordered_json object = {{"photo", path}, {"name", name}, {"bytes", picture.size()}};
    if (step) object["step"] = *step;
    object["fileTime"] = time.value_or(0);
    object["fileSize"] = size.value_or(0);
    object["FileSize"] = size.value_or(0);  // the interface's spelling of the same
    object["fileName"] = storedName ? nlohmann::ordered_json(*storedName) : nlohmann::ordered_json();
    printJson(object);
  }

  int stitch(PanoramaMaker& maker, const Saved& photo) const {
    std::string fault;
    const auto panorama = maker.panoramaOf(photo.picture.bytes(), fault);
    if (!panorama) return fault.empty() ? kRefused : complain(kRefused, "photo", photo.path + ": " + fault);
    const std::filesystem::path beside(photo.path);
    const auto path = saveFile(beside.parent_path().string(), panoramaName(beside), panorama->bytes, fault);
    if (!path) return complain(kRefused, "photo", fault);
    if (!invocation_.settings.json) {
      printLine(*path);
    } else {
      printJson({{"panorama", *path}, {"of", photo.path}, {"width", panorama->width}, {"height", panorama->height}});
    }
    return kDone;
  }

  CameraLink& link_;
  const Invocation& invocation_;
  const std::shared_ptr<Stored> stored_ = std::make_shared<Stored>();
  std::vector<Saved> saved_;
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
