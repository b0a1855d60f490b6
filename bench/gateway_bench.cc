// What `zelcam serve` costs where it only passes pictures on: the processor time of its process alone, as a share of
// one processor, and its memory, with simulated cameras and viewers in this process.
//
//   gateway_bench [SECONDS]      10 seconds a case
//
//   one camera at 3040 x 1520, 30 pictures and 29.4 Mbit a second, with 1, 2 and 16 viewers
//   16 cameras at 1440 x 720, 30 pictures a second, with one viewer each

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/film.h"
#include "bench/http_viewers.h"
#include "bench/ratios.h"
#include "simulator/camera_simulator.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::bench {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr int kLoop = 60;            // pictures of the film
constexpr double kWarmSeconds = 3;   // before the clock runs
constexpr int kSmallResolution = 3;  // 1440 x 720, 30 pictures a second

[[noreturn]] void giveUp(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

std::string writeFilm(const std::string& file) {
  std::ofstream out(file, std::ios::binary);
  for (const Film::Bytes& picture : makeFilm(kLoop).pictures)
    out.write(reinterpret_cast<const char*>(picture.data()), static_cast<std::streamsize>(picture.size()));
  return file;
}

// The program, as a process of its own.
class Gateway {
 public:
  Gateway(const std::string& bus, const std::string& media, int resolution) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) giveUp("no pipe can be made");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::vector<std::string> words = {
        program(),     "--accessories", bus,   "serve",        "--listen",
        "127.0.0.1:0", "--media",       media, "--resolution", std::to_string(resolution)};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (posix_spawn(&process_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
      giveUp("zelcam cannot be run");
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    readPort(ends[0]);
    ::close(ends[0]);
  }
  ~Gateway() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
  }
  Gateway(const Gateway&) = delete;
  Gateway& operator=(const Gateway&) = delete;

  int port() const { return port_; }

  // Units: seconds of processor time so far.
  double processorSeconds() const {
    std::ifstream file("/proc/" + std::to_string(process_) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), {});
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string field;
    for (int before = 0; before < 11; ++before) fields >> field;  // from the state to what stands before the times
    double user = 0, system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
  }
  double megabytes() const {
    double pages = 0, resident = 0;
    std::ifstream("/proc/" + std::to_string(process_) + "/statm") >> pages >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1 << 20);
  }

 private:
  static std::string program() { return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zelcam"; }

  // Of the line "http://127.0.0.1:8360/", which is printed once it listens.
  void readPort(int from) {
    std::string line;
    for (char letter = 0; ::read(from, &letter, 1) == 1 && letter != '\n';) line += letter;
    port_ = std::atoi(line.substr(line.rfind(':') + 1).c_str());
    if (port_ == 0) giveUp("zelcam serve does not say where it listens");
  }

  pid_t process_ = -1;
  int port_ = 0;
};

std::string serialOf(int camera) { return "BENCH" + std::to_string(camera); }

struct Case {
  const char* what;
  int cameras, viewers;  // viewers of each camera
  int resolution;
};

std::vector<std::unique_ptr<simulator::CameraSimulator>> camerasFor(const Case& one, const std::string& bus,
                                                                    const std::string& film) {
  std::vector<std::unique_ptr<simulator::CameraSimulator>> cameras;
  for (int number = 0; number < one.cameras; ++number) {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = bus;
    options.identity.serial = serialOf(number);
    options.resolution = one.resolution;
    if (one.resolution == kFilmResolution) options.video = film;
    cameras.push_back(std::make_unique<simulator::CameraSimulator>(std::move(options)));
    std::string error;
    if (!cameras.back()->start(error)) giveUp(error.c_str());
  }
  return cameras;
}

// Share: of one processor. Pictures: a second, of the viewer that has the fewest.
struct Figures {
  double share = 0, pictures = 0, megabytes = 0, growth = 0;
  std::uint64_t skips = 0;
};

Figures measured(const Case& one, const std::string& film, double seconds) {
  const test::TemporaryFolder folder;
  const std::string bus = folder.file("bus");
  std::filesystem::create_directory(bus);
  std::filesystem::permissions(bus, std::filesystem::perms::owner_all);
  const auto cameras = camerasFor(one, bus, film);
  const Gateway gateway(bus, folder.file("media"), one.resolution);
  while (camerasThatStream(gateway.port()) < one.cameras) std::this_thread::sleep_for(Seconds(0.1));
  HttpViewers viewers(gateway.port());
  for (int camera = 0; camera < one.cameras; ++camera)
    for (int viewer = 0; viewer < one.viewers; ++viewer) viewers.add(serialOf(camera));
  viewers.start();
  while (viewers.counts().least == 0) std::this_thread::sleep_for(Seconds(0.05));
  std::this_thread::sleep_for(Seconds(kWarmSeconds));
  const auto before = viewers.counts();
  const double used = gateway.processorSeconds(), held = gateway.megabytes();
  const auto start = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(Seconds(seconds));
  const double lasted = Seconds(std::chrono::steady_clock::now() - start).count();
  const auto after = viewers.counts();
  return {(gateway.processorSeconds() - used) / lasted, static_cast<double>(after.least - before.least) / lasted,
          gateway.megabytes(), gateway.megabytes() - held, after.skips};
}

int runAll(double seconds) {
  constexpr Case kCases[] = {{"1 camera 3040x1520, 1 viewer", 1, 1, kFilmResolution},
                             {"1 camera 3040x1520, 2 viewers", 1, 2, kFilmResolution},
                             {"1 camera 3040x1520, 16 viewers", 1, 16, kFilmResolution},
                             {"16 cameras 1440x720, a viewer each", 16, 1, kSmallResolution}};
  const test::TemporaryFolder folder;
  const std::string film = writeFilm(folder.file("film.h264"));
  std::printf("%-36s %10s %12s %8s %8s %10s\n", "", "processor", "pictures/s", "skips", "MB", "growth");
  std::vector<Figures> all;
  for (const Case& one : kCases) {
    all.push_back(measured(one, film, seconds));
    const Figures& now = all.back();
    std::printf("%-36s %9.2f%% %12.2f %8llu %8.1f %10.1f\n", one.what, 100 * now.share, now.pictures,
                static_cast<unsigned long long>(now.skips), now.megabytes, now.growth);
    std::fflush(stdout);
  }
  std::printf("\n");
  printRatio("the first viewer, per cent of a processor", 100 * all[0].share, 3);
  printRatio("the second one, per cent", 100 * (all[1].share - all[0].share), 1.5);
  printRatio("each further one of 16, per cent", 100 * (all[2].share - all[0].share) / 15, 1.5);
  return 0;
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  zel::bench::answerHelp(argc, argv,
                         "gateway_bench [SECONDS]: what zelcam serve costs for viewers of live pictures; 10 s a case");
  return zel::bench::runAll(zel::bench::roundsIn(argc, argv, 10));
}
