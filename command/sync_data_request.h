#pragma once

#include <cstdint>

#include "platform/mutex.h"
#include "platform/queues.h"
#include "transport/camera_data_parser.h"
#include "transport/roles.h"

class ZELCameraAccessory;

namespace zel {

// The request that asks the camera for the synchronisation marker. It is the one request that is sent whatever the
// connection's status, because it is what brings the first frame.
// Owner:  the arguments of the constructor must outlive the object and the session thread.
class SyncDataRequest final : public SyncDataRequester {
 public:
  SyncDataRequest(CameraDataParser& parser, ZELCameraAccessory& accessory, platform::Queue& mainQueue);

  // A later request takes the place of one that still waits; the handler of the earlier one is never called.
  // Thread: any thread; the handler runs on the main queue.
  void msgReqSendSyncData(const ZELData& marker, Handler rebackBlock) override;

 private:
  void registerMsgReqSendSyncData();
  void complete();

  CameraDataParser& parser_;
  ZELCameraAccessory& accessory_;
  platform::Queue& mainQueue_;

  Mutex mutex_;
  Handler waiting_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
