#include "gateway/api/rows_of_photos.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/Panorama.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <variant>

#include "gateway/api/call_problem.h"
#include "gateway/api/fields.h"
#include "gateway/api/rows_of_files.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

using ExposureSteps = std::vector<std::int8_t>;
constexpr std::size_t kMostExposureSteps = std::tuple_size_v<decltype(aeb_info::steps)>;

// All pictures of a bracket are in memory before the first is stored.
constexpr std::uint64_t kMostBytesOfPhotos = std::uint64_t{384} << 20;

struct NamedPhoto {
  std::string name;  // the camera's
  ZELData jpeg;
};

// One photo or bracket, from the request to its stored files. Each step begins the next one on the thread that may wait
// for it; whoever is dropped on the way drops the request's answer, which is then one of 500.
class PhotoJob : public std::enable_shared_from_this<PhotoJob> {
 public:
  PhotoJob(std::shared_ptr<HeldCamera> held, MediaFolder& folder, Worker& worker, std::chrono::milliseconds limit,
           Respond respond)
      : held_(std::move(held)), folder_(folder), worker_(worker), limit_(limit), respond_(std::move(respond)) {}

  void begin(const ExposureSteps& steps, bool stitches) {
    stitches_ = stitches;
    const CaptureOptions options{.mostBytes = kMostBytesOfPhotos};
    if (steps.empty()) {
      camera().photo(options, limits()).then([self = shared_from_this()](const Result<Photo>& photo) {
        if (!photo) return self->fail("photo", photo.error());
        self->store({{photo->name.value_or(photo->stored.name.value_or("")), photo->jpeg}});
      });
      return;
    }
    camera().bracket(steps, options, limits()).then([self = shared_from_this()](const Result<PhotoSeries>& series) {
      if (!series) return self->fail("photo", series.error());
      std::vector<NamedPhoto> photos;
      for (std::size_t at = 0; at < series->jpegs.size(); ++at) {
        const std::string& name = series->names[at];
        photos.push_back({name.empty() ? series->stored.name.value_or("") : name, series->jpegs[at]});
      }
      self->store(std::move(photos));
    });
  }

 private:
  Camera& camera() const { return held_->camera(); }
  RequestOptions limits() const { return {.timeLimit = limit_}; }

  void fail(std::string_view what, const CameraError& error) const {
    respond_(cameraProblem(what, error, std::chrono::duration<double>(limit_).count()));
  }

  void onWorker(void (PhotoJob::*step)()) {
    const bool isTaken = worker_.post([self = shared_from_this(), step] { (self.get()->*step)(); });
    if (!isTaken) respond_(problem(503, "too many pictures are being made; ask again"));
  }

  void store(std::vector<NamedPhoto> photos) {
    photos_ = std::move(photos);
    onWorker(&PhotoJob::storePhotos);
  }

  // On the worker's thread.
  void storePhotos() {
    for (const NamedPhoto& photo : photos_) {
      std::string fault;
      const auto file = folder_.store(photo.name, photo.jpeg.bytes(), fault);
      if (!file) return respond_(problem(500, fault));
      stored_.push_back(file->name);
      files_.push_back(fileJson(*file));
    }
    if (!stitches_) return finish();
    camera()
        .lensOffset(kMediaOffsetOfCamera, 0, limits())
        .then([self = shared_from_this()](const Result<std::optional<std::string>>& offset) {
          if (!offset) return self->fail("the lens offset", offset.error());
          self->offset_ = offset->value_or("");
          self->onWorker(&PhotoJob::storePanoramas);
        });
  }

  // On the worker's thread.
  void storePanoramas() {
    PanoramaMaker maker(*camera().stack().ports().mediaLibrary, offset_);
    for (std::size_t at = 0; at < photos_.size(); ++at) {
      std::string fault;
      const auto panorama = maker.panoramaOf(photos_[at].jpeg.bytes(), fault);
      if (!panorama) return respond_(problem(500, fault.empty() ? "the photo could not be stitched" : fault));
      const auto file = folder_.storePanorama(stored_[at], panorama->file, fault);
      if (!file) return respond_(problem(500, fault));
      files_.push_back(fileJson(*file));
    }
    finish();
  }

  void finish() const { respond_(jsonResponse({{"files", files_}})); }

  const std::shared_ptr<HeldCamera> held_;
  MediaFolder& folder_;
  Worker& worker_;
  const std::chrono::milliseconds limit_;
  const Respond respond_;
  bool stitches_ = false;
  std::string offset_;
  std::vector<NamedPhoto> photos_;
  std::vector<std::string> stored_;  // their files' names
  ordered_json files_ = ordered_json::array();
};

ExposureSteps stepsIn(Fields& fields) {
  ExposureSteps steps;
  const nlohmann::json* const given = fields.find("bracket");
  if (given == nullptr) return steps;
  const std::string fault =
      fmt::format("\"bracket\" must be a list of 1 to {} exposure steps from -128 to 127", kMostExposureSteps);
  if (!given->is_array() || given->empty() || given->size() > kMostExposureSteps) {
    fields.complain(fault);
    return steps;
  }
  for (const auto& one : *given) {
    const auto step = one.is_number_integer() ? one.get<std::int64_t>() : INT64_MAX;
    if (!std::in_range<std::int8_t>(step)) fields.complain(fault);
    steps.push_back(static_cast<std::int8_t>(step));
  }
  return steps;
}

}  // namespace

std::vector<Row> photoRows(Cameras& cameras, MediaFolder& folder, Worker& worker, std::chrono::milliseconds timeLimit) {
  const auto take = [&cameras, &folder, &worker, timeLimit](const RowCall& call, const Respond& respond) {
    Fields fields(call.body, {"bracket", "stitch"});
    const ExposureSteps steps = stepsIn(fields);
    const bool stitches = fields.flag("stitch");
    if (fields.fault()) return respond(problem(422, *fields.fault()));
    auto found = reachable(cameras, call.parameter("serial"));
    if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
    auto& held = std::get<std::shared_ptr<HeldCamera>>(found);
    std::make_shared<PhotoJob>(std::move(held), folder, worker, timeLimit, respond)->begin(steps, stitches);
  };
  return {{"POST",
           "/api/v1/cameras/{serial}/photo",
           "photo",
           "Takes a photo, or an exposure bracket, and stores it",
           {{200, "application/json", "Files", "the stored files, the panoramas behind the photos"}},
           take,
           "Photo"}};
}

}  // namespace zel::gateway
