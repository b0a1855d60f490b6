#include "simulator/media/media_library.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "simulator/media/beep.h"
#include "simulator/media/scene_film.h"

namespace zel::simulator {
namespace {

// Increase it with every change of pictures or sound, to invalidate cached loops.
constexpr int kMediaVersion = 2;
constexpr std::uintmax_t kLargestMediaFile = 1024u << 20;  // bytes

bool readFile(const std::string& path, Bytes& into, std::string& error) {
  std::error_code fault;
  const std::uintmax_t size = std::filesystem::file_size(path, fault);
  std::ifstream file(path, std::ios::binary);
  if (fault || !file) {
    error = path + " cannot be read";
  } else if (size > kLargestMediaFile) {
    error = path + " is larger than 1 GiB";
  } else {
    into.assign(std::istreambuf_iterator<char>(file), {});
  }
  return error.empty();
}

void fill(VideoLoop& loop, std::vector<VideoPicture> pictures) {
  for (VideoPicture& picture : pictures) loop.add(std::move(picture));
}

std::string nameOf(const PreviewFormat& format) {
  return "scene-" + std::to_string(format.width) + "x" + std::to_string(format.height) + "-" +
         std::to_string(format.rate) + (format.bitrate > 0 ? "-" + std::to_string(format.bitrate) : "") +
         (format.slices > 1 ? "-slices" + std::to_string(format.slices) : "") + "-v" + std::to_string(kMediaVersion) +
         ".h264";
}

// Runs on a separate thread.
void film(const std::stop_token& stop, const PreviewFormat& format, const LoopCache& cache, VideoLoop& loop) {
  std::vector<VideoPicture> kept = picturesIn(cache.find(nameOf(format)));
  if (kept.size() == loop.length()) return fill(loop, std::move(kept));
  SceneFilm scene(format);
  Bytes stream;
  for (std::size_t made = 0; made < loop.length(); ++made) {
    VideoPicture picture = stop.stop_requested() ? VideoPicture() : scene.next();
    if (picture.bytes.empty()) return;
    stream.insert(stream.end(), picture.bytes.begin(), picture.bytes.end());
    loop.add(std::move(picture));
  }
  cache.keep(nameOf(format), stream);
}

// Runs on a separate thread too.
AudioTrack record(const LoopCache& cache) {
  const std::string name = "beeps-v" + std::to_string(kMediaVersion) + ".aac";
  AudioTrack track = framesIn(cache.find(name));
  if (static_cast<double>(track.frames.size()) * track.secondsPerFrame() == kLoopSeconds) return track;
  track = makeBeeps();
  Bytes stream;
  for (const Bytes& frame : track.frames) stream.insert(stream.end(), frame.begin(), frame.end());
  if (!stream.empty()) cache.keep(name, stream);
  return track;
}

}  // namespace

MediaLibrary::~MediaLibrary() { scenesMaker_.request_stop(); }

bool MediaLibrary::useVideo(const std::string& file, std::string& error) {
  Bytes stream;
  if (!readFile(file, stream, error)) return false;
  std::vector<VideoPicture> pictures = picturesIn(stream);
  if (pictures.empty()) {
    error = file + " is no H.264 stream with start codes";
    return false;
  }
  const auto loop = std::make_shared<VideoLoop>(pictures.size());
  fill(*loop, std::move(pictures));
  file_ = loop;
  return true;
}

bool MediaLibrary::useAudio(const std::string& file, std::string& error) {
  Bytes stream;
  if (!readFile(file, stream, error)) return false;
  AudioTrack track = framesIn(stream);
  if (track.frames.empty()) {
    error = file + " is no ADTS stream";
    return false;
  }
  audio_ = readyAudio(std::move(track));
  return true;
}

std::shared_ptr<const VideoLoop> MediaLibrary::video(const PreviewFormat& format) {
  if (file_) return file_;
  if (!scene_ || format != format_) makePictures(format);
  return scene_;
}

void MediaLibrary::makePictures(const PreviewFormat& format) {
  scenesMaker_.request_stop();
  scenesMaker_ = {};
  format_ = format;
  scene_ = std::make_shared<VideoLoop>(static_cast<std::size_t>(kLoopSeconds * format.rate));
  makers_.emplace_back([stop = scenesMaker_.get_token(), format, cache = cache_, loop = scene_] {
    film(stop, format, cache, *loop);
    loop->end();
  });
}

FutureAudio MediaLibrary::audio() {
  if (!audio_.valid()) makeSound();
  return audio_;
}

void MediaLibrary::makeSound() {
  std::promise<std::shared_ptr<const AudioTrack>> promise;
  audio_ = promise.get_future().share();
  makers_.emplace_back([promise = std::move(promise), cache = cache_]() mutable {
    promise.set_value(std::make_shared<const AudioTrack>(record(cache)));
  });
}

}  // namespace zel::simulator
