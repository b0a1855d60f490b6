#pragma once

#include <functional>
#include <memory>

#include <ZELTarkaSDK/platform/ports.h>

class CameraDataParser;
class ZELCameraUCD;
class ZELPreviewPlayer;

namespace zel {

// The objects that a live data source needs.
// Owner:  shared, so that a source may outlive its stack; the camera is then not connected.
struct LiveParts {
  platform::Ports ports;
  std::shared_ptr<ZELCameraUCD> ucd;
  std::shared_ptr<CameraDataParser> parser;
  std::function<std::shared_ptr<ZELPreviewPlayer>()> suitablePreviewPlayer;
};

}  // namespace zel
