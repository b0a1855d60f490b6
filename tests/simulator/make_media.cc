// Makes what every simulated camera of the tests shows, so that none of them makes it while it is being tested.
#include "simulator/media/media_library.h"

int main() {
  using namespace zel::simulator;
  constexpr int kStandardResolution = 3;
  MediaLibrary library;
  const auto scene = library.video(previewFormat(kStandardResolution));
  library.audio().wait();
  return scene->waitFor(scene->length()) == scene->length() ? 0 : 1;
}
