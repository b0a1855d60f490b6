// Makes what every simulated camera of the tests shows, so that none of them makes it while it is being tested.
#include "simulator/media/media_library.h"

int main() {
  using namespace zel::simulator;
  constexpr int kStandardResolution = 3, kSlowest = 0;
  MediaLibrary library;
  for (const int resolution : {kStandardResolution, kSlowest}) {
    for (const int slices : {1, 4}) {
      const auto scene = library.video(previewFormat(resolution, 0, slices));
      if (scene->waitFor(scene->length()) != scene->length()) return 1;
    }
  }
  library.audio().wait();
  return 0;
}
