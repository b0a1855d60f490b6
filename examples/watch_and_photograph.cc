// Waits for the camera's key and takes a photo at each press, in one coroutine; ends after so many.
//
//   watch_and_photograph COUNT

#include <ZELTarkaSDK/Camera.h>

#include <cstdio>
#include <cstdlib>

static zel::Pending<void> photographAtKey(zel::Camera& camera, int count) {
  auto events = camera.events();
  while (count > 0) {
    const auto event = co_await events.next();
    if (!event) co_return event.error();
    if (event->type != ZELCameraEvent::keyPressed) continue;
    const auto photo = co_await camera.photo();
    if (!photo) co_return photo.error();
    std::printf("%s: %zu bytes\n", photo->name.value_or("a photo").c_str(), photo->jpeg.size());
    --count;
  }
  co_return {};
}

int main(int count, char** arguments) {
  auto camera = zel::Camera::open().get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;
  std::puts("press the camera's key");
  std::fflush(stdout);
  const auto done = photographAtKey(*camera, count > 1 ? std::atoi(arguments[1]) : 1).get();
  if (!done) return std::fprintf(stderr, "%s\n", done.error().message.c_str()), 1;
}
