// What `zelcam live` does with servers.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using app::ReadBack;
using app::readBack;
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
                                      << "daemon off;\nworker_processes 1;\n"
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

}  // namespace
}  // namespace zel::test
