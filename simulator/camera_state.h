#pragma once

#include <cstdint>
#include <string>

#include "simulator/battery.h"
#include "simulator/camera_clock.h"
#include "simulator/camera_events.h"
#include "simulator/card.h"
#include "simulator/extra_info.h"
#include "simulator/file_records.h"
#include "simulator/lens_records.h"
#include "simulator/settings.h"

namespace zel::simulator {

struct PhotoSize {
  int width, height;
  std::uint64_t room;  // bytes on the card for each picture
};

inline constexpr std::uint64_t kKiB = 1024, kMiB = 1024 * kKiB, kGiB = 1024 * kMiB;
inline constexpr PhotoSize kPhotoSizes[] = {{3040, 1520, 4 * kMiB}, {1440, 720, kMiB}, {640, 320, 256 * kKiB}};
inline constexpr int kFirmwareWithClock = 190;  // supports the clock and the audio bitrate from here on

// The camera's initial state.
struct CameraStart {
  std::string serial = "E1A0001";
  int firmware = 192;
  int resolution = 3;  // preview resolution code, 0 to 15
  std::uint64_t cardSize = 8 * kGiB;
  std::int64_t now = 0;  // seconds since 1970
};

// The codes that choose sizes and rates.
struct Modes {
  std::uint8_t preview = 0;     // resolution code, 0 to 15
  std::uint8_t recording = 0;   // resolution code, 0 to 15
  std::uint8_t videoRate = 40;  // megabits a second
  std::uint8_t photo = 0;       // index into kPhotoSizes
};

// The host's latest sensor updates. Empty until the first.
struct SensorUpdates {
  Bytes gps, gyro, orientation;
};

// The camera's whole state, without behaviour.
struct CameraState {
  CameraState(const CameraWorld& world, const CameraStart& start);

  const int firmware;
  std::string serial;
  const std::string uuid;  // derived from the first serial number
  Modes modes;
  Settings settings;
  SensorUpdates sensors;
  LensRecords lenses;
  CameraClock clock;
  Battery battery;
  Card card;
  FileRecords files;
  ExtraInfo photoExtras, videoExtras;

  const PhotoSize& photoSize() const { return kPhotoSizes[modes.photo]; }
  double exposureBias() const;  // stops
  std::uint64_t videoBytesPerMs() const { return std::uint64_t{125} * modes.videoRate; }
  std::uint8_t cardState() const { return card.state(photoSize().room); }

  // Records a finished file with its sensor triple and the current lens offset.
  void addFile(const FileEntry& file, const Bytes& sensorTriple);
};

}  // namespace zel::simulator
