#pragma once

class CameraSession;

// A placeholder for a second channel to the camera: opening it always fails.
class ZELTunnelService {
 public:
  // initWithCameraUCDData: - the session is not used.
  explicit ZELTunnelService(CameraSession&) {}

  bool open() { return false; }
  void close() {}
};
