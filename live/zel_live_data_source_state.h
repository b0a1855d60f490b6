#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/notification_center.h>

#include "base/mutex.h"
#include "link/camera_data_parser.h"
#include "live/encode_stage.h"
#include "live/live_output.h"
#include "live/live_parts.h"
#include "live/live_run.h"
#include "live/live_settings.h"
#include "live/stitch_stage.h"

struct ZELLiveDataSource::State {
  State(const zel::LiveParts& given, std::uint64_t resolution, std::uint64_t width, std::uint64_t height,
        std::uint64_t bitrate)
      : parts(given),
        settings(resolution, width, height, bitrate),
        output(settings),
        stitching(parts.ports.clock, parts.ports.mediaLibrary, settings),
        encoding(parts.ports.clock, parts.ports.videoEncoders) {}

  // The de-multiplexer's player, which other code may have set.
  std::shared_ptr<ZELPreviewPlayer> currentPlayer() const {
    return std::dynamic_pointer_cast<ZELPreviewPlayer>(parts.parser->previewPlayer());
  }

  const zel::LiveParts parts;
  zel::LiveSettings settings;
  zel::LiveOutput output;
  zel::StitchStage stitching;
  zel::EncodeStage encoding;
  zel::Guarded<std::shared_ptr<ZELPreviewPlayer>> player;

  zel::LiveRun run;
  // Held while a run attaches itself and while it is stopped, so that each is atomic to the other.
  zel::Mutex attachMutex;

  // Guards both uses and the decision to release the camera: it is held until the commands are sent.
  zel::Mutex statusLock;
  std::atomic<bool> isPreview = false;  // written under the lock

  // Last: observers are removed before the objects that they use.
  std::unique_ptr<zel::platform::NotificationObservation> background, active;
};
