#pragma once

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/documents.h>
#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/notification_center.h>
#include <ZELTarkaSDK/platform/queues.h>
#include <ZELTarkaSDK/platform/run_loop.h>
#include <ZELTarkaSDK/platform/video_decoder.h>
#include <ZELTarkaSDK/platform/video_encoder.h>

namespace zel::platform {

// Everything that a camera stack needs from the host. The referenced objects outlive every stack that is built on them.
struct Ports {
  Clock& clock;
  Threads& threads;
  Queues& queues;
  AccessoryManager& accessories;
  NotificationCenter& notifications;
  VideoDecoders* videoDecoders = nullptr;  // null: the host decodes no video
  MediaLibrary* mediaLibrary = nullptr;    // null: the host renders nothing
  VideoEncoders* videoEncoders = nullptr;  // null: the host encodes no video
  Documents* documents = nullptr;          // null: the host keeps no log file
};

}  // namespace zel::platform
