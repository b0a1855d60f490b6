// A host with an Asio context, in which the camera's callbacks run. Asks three times for the battery.

#include <ZELTarkaSDK/Camera.h>

#include <asio.hpp>

#include <chrono>
#include <cstdio>
#include <functional>
#include <utility>

// Asks again every second, until three answers have come.
class BatteryWatch {
 public:
  BatteryWatch(zel::Camera& camera, asio::io_context& loop) : camera_(camera), loop_(loop), timer_(loop) { ask(); }

 private:
  void ask() {
    camera_.battery().then([this](const zel::Result<zel::Battery>& battery) { show(battery); });
    if (++asked_ == 3) return;
    timer_.expires_after(std::chrono::seconds(1));
    timer_.async_wait([this](const asio::error_code& stopped) {
      if (!stopped) ask();
    });
  }

  void show(const zel::Result<zel::Battery>& battery) {
    battery ? std::printf("battery: %d %%\n", battery->level) : std::printf("%s\n", battery.error().message.c_str());
    if (++answered_ == 3) loop_.stop();
  }

  zel::Camera& camera_;
  asio::io_context& loop_;
  asio::steady_timer timer_;
  int asked_ = 0, answered_ = 0;
};

int main() {
  asio::io_context loop;  // outlives the camera
  const auto work = asio::make_work_guard(loop);
  auto camera = zel::Camera::open({.executor = [&](auto call) { asio::post(loop, std::move(call)); }}).get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;
  BatteryWatch watch(*camera, loop);
  loop.run();
}
