// Asks the camera for its battery: the smallest host.

#include <ZELTarkaSDK/Camera.h>

#include <cstdio>

int main() {
  auto camera = zel::Camera::open().get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;
  const auto battery = camera->battery().get();
  if (!battery) return std::fprintf(stderr, "%s\n", battery.error().message.c_str()), 1;
  std::printf("battery: %d %%\n", battery->level);
}
