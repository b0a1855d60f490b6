#pragma once

#include "platform/accessory.h"
#include "platform/clock.h"
#include "platform/documents.h"
#include "platform/media_library.h"
#include "platform/notification_center.h"
#include "platform/queues.h"
#include "platform/run_loop.h"
#include "platform/video_decoder.h"
#include "platform/video_encoder.h"

namespace zel::platform {

// Everything that one camera stack asks of the host. The referenced objects outlive every stack that is built on them.
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
