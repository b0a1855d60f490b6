// What `zelcam live` does with servers.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr char kNginx[] = "/usr/sbin/nginx";
constexpr char kRtmpModule[] = "/usr/lib/nginx/modules/ngx_rtmp_module.so";

// -- RTMP

class RtmpTest : public LiveTest {
 protected:
  void SetUp() override {
    if (!fs::exists(kNginx) || !fs::exists(kRtmpModule)) GTEST_SKIP() << "needs nginx and libnginx-mod-rtmp";
    port_ = freePort(SOCK_STREAM);
    std::ofstream(path("nginx.conf")) << "load_module " << kRtmpModule << ";\n"
                                      << (::geteuid() == 0 ? "user root;\n" : "")
                                      << "daemon off;\nmaster_process off;\n"  // one process, which ends with the test
                                      << "pid " << path("nginx.pid") << ";\nerror_log " << path("nginx.log")
                                      << " notice;\nevents { worker_connections 64; }\n"
                                      << "rtmp { server { listen 127.0.0.1:" << port_
                                      << "; application live { live on; record all; record_unique on; record_path "
                                      << folder.path() << "; } } }\n";
  }

  std::unique_ptr<Process> server() const {
    return std::make_unique<Process>(kNginx, std::vector<std::string>{"-p", folder.path(), "-c", path("nginx.conf")},
                                     folder.path());
  }
  std::string address() const { return "rtmp://127.0.0.1:" + std::to_string(port_) + "/live/secret"; }

  std::vector<std::string> recordings() const {
    std::vector<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
      if (entry.path().extension() == ".flv") all.push_back(entry.path().string());
    }
    std::ranges::sort(all);
    return all;
  }

 private:
  int port_ = 0;
};

TEST_F(RtmpTest, AServerGetsTheStream) {
  const auto camera = simulator();
  const auto rtmp = server();
  ASSERT_TRUE(grows(path("nginx.pid"), 1)) << rtmp->errors();
  const auto host = live({"--json", "-o", address(), "--size", "480x240", "--duration", "4"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  rtmp->signal(SIGTERM);
  rtmp->wait();
  ASSERT_EQ(recordings().size(), 1u) << host->errors();
  const ReadBack read = readBack(recordings()[0]);
  EXPECT_EQ(read.pictures, lines(*host).at(0)["outputs"].at(0)["pictures"]);
  EXPECT_GE(read.pictures, 10);
  EXPECT_GE(read.audioFrames, 30);
  EXPECT_TRUE(read.ordered);
  EXPECT_EQ(std::pair(read.width, read.height), std::pair(480, 240));
}

TEST_F(RtmpTest, AServerThatComesLateIsTriedAgainAndItsKeyIsNotTold) {
  const auto camera = simulator();
  const auto host = live({"-o", address(), "-o", path("a.ts"), "--no-stitch"});
  ASSERT_TRUE(host->waitForErrors("the server cannot be reached: Connection refused; trying again in"));
  const auto rtmp = server();
  ASSERT_TRUE(host->waitForErrors("is connected"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), Not(HasSubstr("secret")));
  EXPECT_GE(readBack(path("a.ts")).pictures, 30);
}

TEST_F(RtmpTest, AServerThatDropsTheStreamGetsItAgain) {
  const auto camera = simulator();
  auto rtmp = server();
  ASSERT_TRUE(grows(path("nginx.pid"), 1)) << rtmp->errors();
  const auto host = live({"-o", address(), "-o", path("a.ts"), "--no-stitch"});
  ASSERT_TRUE(host->waitForErrors("is connected")) << host->errors();
  rtmp->signal(SIGTERM);
  rtmp->wait();
  ASSERT_TRUE(host->waitForErrors("the server ended the stream"));
  rtmp = server();
  ASSERT_TRUE(host->waitForErrors("is connected again"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_TRUE(readBack(path("a.ts")).ordered);
}

// -- SRT

// A server for one stream, which it writes to a file as it comes. It listens from the start, until it is ended or the
// stream is over.
class SrtServer {
 public:
  SrtServer(int port, const std::string& file)
      : address_("srt://127.0.0.1:" + std::to_string(port) + "?mode=listener&tlpktdrop=0"),
        thread_([this, file] { record(file); }) {}
  ~SrtServer() {
    ended_ = true;
    wait();
  }
  SrtServer(const SrtServer&) = delete;
  SrtServer& operator=(const SrtServer&) = delete;

  // Until the stream is over.
  void wait() {
    if (thread_.joinable()) thread_.join();
  }

 private:
  void record(const std::string& file) {
    const AVIOInterruptCB isEnded = {[](void* ended) { return static_cast<std::atomic<bool>*>(ended)->load() ? 1 : 0; },
                                     &ended_};
    AVIOContext* opened = nullptr;
    if (avio_open2(&opened, address_.c_str(), AVIO_FLAG_READ, &isEnded, nullptr) < 0) return;
    std::ofstream out(file, std::ios::binary);
    std::array<unsigned char, 1316> bytes{};
    int size = 0;
    while (!ended_ && (size = avio_read_partial(opened, bytes.data(), static_cast<int>(bytes.size()))) > 0) {
      out.write(reinterpret_cast<const char*>(bytes.data()), size).flush();
    }
    avio_closep(&opened);
  }

  const std::string address_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

class SrtTest : public LiveTest {
 protected:
  void SetUp() override {
    void* next = nullptr;
    for (const char* name = ""; name != nullptr; name = avio_enum_protocols(&next, 1)) {
      if (name == std::string_view("srt")) return;
    }
    GTEST_SKIP() << "needs a libavformat that speaks SRT";
  }

  const int port_ = freePort(SOCK_DGRAM);
  // What comes late, on a machine that has much to do, is not dropped.
  const std::string address_ = "srt://127.0.0.1:" + std::to_string(port_) + "?tlpktdrop=0";
};

TEST_F(SrtTest, AServerGetsTheStream) {
  const auto camera = simulator();
  SrtServer server(port_, path("srt.ts"));
  const auto host = live({"--json", "-o", address_, "--size", "480x240", "--duration", "4"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  server.wait();
  const ReadBack read = readBack(path("srt.ts"));
  EXPECT_EQ(read.pictures, lines(*host).at(0)["outputs"].at(0)["pictures"]);
  EXPECT_GE(read.pictures, 10);
  EXPECT_GE(read.audioFrames, 30);
  EXPECT_EQ(std::pair(read.videoCodec, read.audioCodec), std::pair(AV_CODEC_ID_H264, AV_CODEC_ID_AAC));
  EXPECT_TRUE(read.ordered);
  EXPECT_TRUE(read.beginsWithKey);
  EXPECT_EQ(std::pair(read.width, read.height), std::pair(480, 240));
}

TEST_F(SrtTest, AServerThatComesLateOrGoesAwayIsTriedAgain) {
  const auto camera = simulator();
  const auto host = live({"--json", "-o", address_ + "&streamid=secret", "-o", path("a.ts"), "--no-stitch"});
  ASSERT_TRUE(host->waitForErrors("the server cannot be reached: "));
  auto server = std::make_unique<SrtServer>(port_, path("first.ts"));
  ASSERT_TRUE(host->waitForErrors("is connected")) << host->errors();
  ASSERT_TRUE(grows(path("first.ts"), 200'000)) << host->errors();
  server.reset();
  ASSERT_TRUE(host->waitForErrors("the server ended the stream")) << host->errors();
  server = std::make_unique<SrtServer>(port_, path("second.ts"));
  ASSERT_TRUE(host->waitForErrors("is connected again")) << host->errors();
  ASSERT_TRUE(grows(path("second.ts"), 200'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  server->wait();
  EXPECT_THAT(host->errors(), Not(HasSubstr("secret")));
  for (const char* name : {"first.ts", "second.ts"}) {
    const ReadBack read = readBack(path(name));
    EXPECT_TRUE(read.ordered) << name;
    EXPECT_TRUE(read.beginsWithKey) << name;
  }
  const Json told = lines(*host).at(0);
  EXPECT_EQ(told["outputs"].at(0)["connections"], 2);
  EXPECT_EQ(told["outputs"].at(1)["dropped"], 0);
  EXPECT_EQ(readBack(path("a.ts")).pictures, told["pictures"]);
}

}  // namespace
}  // namespace zel::test
