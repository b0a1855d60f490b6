#include "apps/zelcam/commands/commands.h"

extern "C" {
#include <libavutil/log.h>
}

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "apps/zelcam/commands/file_summary.h"
#include "apps/zelcam/host/child.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "gateway/media/file.h"

namespace zel::app {
namespace {

using gateway::readFile;

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kPhoto = "mjpeg,3040,1520,1";

// A folder that is removed with this object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "zelcam-demo-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// Runs commands of this program on a separate bus. After the first fault all further steps do nothing.
class Demo {
 public:
  // programs: the folder of this program and of the simulator.
  Demo(const Invocation& invocation, fs::path programs)
      : json_(invocation.settings.json),
        programs_(std::move(programs)),
        out_(invocation.values.has("--output") ? invocation.values.text("--output") : "demo-out"),
        duration_(invocation.values.has("--duration") ? invocation.values.text("--duration") : "10") {}

  int run() {
    prepare();
    if (fault_.empty()) withCamera();
    if (isInterruptPending()) return kInterrupted;
    if (!fault_.empty()) return complain(kRefused, "demo", fault_);
    tell("");
    tell("The camera was found, asked, photographed with, recorded with, given a file, watched and streamed from.");
    tell("");
    for (const std::string& row : rows_) printLine(row);
    return kDone;
  }

 private:
  void prepare() {
    std::error_code error;
    fs::create_directories(out_, error);
    require(!error, fmt::format("{} cannot be made: {}", out_.string(), error.message()));
    require(::access(out_.c_str(), W_OK) == 0, fmt::format("{} cannot be written", out_.string()));
    require(!folder_.path().empty(), "there is no room for temporary files");
    require(::access((programs_ / "zelcam-sim").c_str(), X_OK) == 0,
            fmt::format("the simulator, {}, is missing", (programs_ / "zelcam-sim").string()));
  }

  void withCamera() {
    Child simulator(programs_ / "zelcam-sim",
                    {"--accessories", bus(), "--name", "Demo camera", "--serial", "DEMO1", "--storage", card()});
    std::string told;
    const bool attached = simulator.read(
        [&told](const std::string& piece) { return (told += piece).find("is attached") != std::string::npos; });
    require(attached, "the simulator does not start: " + told);
    meet();
    const std::string photo = photograph();
    photographBracket();
    record();
    upload(photo);
    watch();
  }

  void meet() {
    show({"devices"});
    show({"monitor", "--seconds", "3"});
    requireTold("status 2 \\(frames arriving\\)", "no frames arrived");
    requireTold("clock offset [1-9][0-9]* ms, round trip [0-9]+ ms", "the clock was not measured");
    show({"info"});
    requireTold("DEMO1", "the camera did not say who it is");
  }

  // Returns the photo's file.
  std::string photograph() {
    show({"photo", "-o", out_, "--stitch"});
    const auto files = linesTold();
    require(files.size() == 2, "a photo and its panorama were expected");
    if (!fault_.empty()) return "";
    readBack(files[0], "photo of both lenses", kPhoto);
    readBack(files[1], "panorama", kPhoto);
    return files[0];
  }

  void photographBracket() {
    show({"photo", "-o", out_ / "bracket", "--bracket", "-2,0,2"});
    const auto files = linesTold();
    require(files.size() == 3, "three photos were expected of the bracket");
    for (const std::string& file : files) readBack(file, "photo of the bracket", kPhoto);
  }

  void record() {
    show({"record", "start"});
    show({"monitor", "--seconds", "1"});
    show({"record", "stop"});
    requireTold("recorded VID_.*, [1-9][0-9]* bytes", "the recording was not told");
  }

  void upload(const std::string& file) {
    show({"upload", file, "--as", "shown/photo.jpg"});
    if (!fault_.empty()) return;
    const auto sent = readFile(file, fault_), stored = readFile(card() + "/shown/photo.jpg", fault_);
    require(sent && stored && *sent == *stored, "the camera does not hold the file that it was sent");
  }

  void watch() {
    show({"preview", "--frames", "90", "--snapshot", out_ / "preview.png"});
    readBack(out_ / "preview.png", "picture of the preview", "png,1440,720,1");
    show({"live", "-o", out_ / "live.mp4", "--size", "1920x960", "--duration", duration_});
    readBack(out_ / "live.mp4", "stitched video with sound", "h264,1920,960,[1-9][0-9]* aac,[1-9][0-9]*");
  }

  std::string bus() const { return folder_.path() + "/bus"; }
  std::string card() const { return folder_.path() + "/card"; }

  void require(bool good, const std::string& otherwise) {
    if (fault_.empty() && !good) fault_ = otherwise;
  }
  void requireTold(const std::string& pattern, const std::string& otherwise) {
    require(std::regex_search(told_, std::regex(pattern)), otherwise);
  }

  // Runs zelcam, and prints the command line and its output.
  void show(const std::vector<std::string>& arguments) {
    if (!fault_.empty()) return;
    tell("");
    tell(fmt::format("$ zelcam {}", fmt::join(arguments, " ")));
    std::vector<std::string> all = {"--accessories", bus(), "--camera", "DEMO1"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const auto start = Clock::now();
    Child zelcam(programs_ / "zelcam", all);
    told_.clear();
    zelcam.read([this](const std::string& piece) {
      json_ ? static_cast<void>(std::fputs(piece.c_str(), stderr)) : printText(piece);
      told_ += piece;
      return false;
    });
    const int status = zelcam.wait();
    seconds_ = std::chrono::duration<double>(Clock::now() - start).count();
    require(status == kDone, fmt::format("zelcam {} ended with status {}", arguments.front(), status));
  }

  std::vector<std::string> linesTold() const {
    std::vector<std::string> lines;
    std::istringstream text(told_);
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  // Decodes the whole file, compares the result with the pattern, and adds a row to the table.
  void readBack(const fs::path& file, const std::string& what, const std::string& pattern) {
    if (!fault_.empty()) return;
    const std::string found = textOf(fileSummary(file));
    require(std::regex_match(found, std::regex(pattern)),
            fmt::format("{} cannot be read back as a {}: \"{}\"", file.string(), what, found));
    std::error_code error;
    const auto bytes = fs::file_size(file, error);
    if (json_) {
      const nlohmann::ordered_json row = {
          {"file", file.string()}, {"what", what}, {"bytes", bytes}, {"seconds", seconds_}, {"holds", found}};
      rows_.push_back(jsonLine(row));
    } else {
      rows_.push_back(
          fmt::format("{:<48} {:<28} {:>9} bytes {:6.1f} s   {}", file.string(), what, bytes, seconds_, found));
    }
  }

  void tell(const std::string& line) const { json_ ? say(line) : printLine(line); }

  const bool json_;
  const fs::path programs_;
  const fs::path out_;
  const std::string duration_;
  const TemporaryFolder folder_;
  std::string told_;    // by the last command
  double seconds_ = 0;  // that it took
  std::string fault_;   // the first
  std::vector<std::string> rows_;
};

}  // namespace

int runDemo(const Invocation& invocation) {
  av_log_set_level(AV_LOG_QUIET);  // zelcam prints its own messages
  std::error_code error;
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  if (error) return complain(kRefused, "demo", "this program cannot find itself: " + error.message());
  return Demo(invocation, self.parent_path()).run();
}

}  // namespace zel::app
