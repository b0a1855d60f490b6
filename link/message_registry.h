#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include "base/mutex.h"
#include "link/camera_msg_packet.h"
#include "link/camera_msg_parser.h"
#include "link/zel_camera_data_parser.h"

namespace zel {

// Records by integer key. Only the low 32 bits of a key are used, as keys have always been 32-bit numbers. Records are
// normally registered before traffic starts; the lock makes late registration safe too.
// Thread: any thread.
template <class Record>
class Registry {
 public:
  void put(std::int64_t key, Record record) {
    auto shared = std::make_shared<const Record>(std::move(record));
    const MutexLock lock(mutex_);
    records_.insert_or_assign(narrow(key), std::move(shared));
  }

  void remove(std::int64_t key) {
    const MutexLock lock(mutex_);
    records_.erase(narrow(key));
  }

  // Null for an unregistered key. The record stays valid when it is replaced.
  std::shared_ptr<const Record> find(std::int64_t key) const {
    const MutexLock lock(mutex_);
    const auto found = records_.find(narrow(key));
    return found != records_.end() ? found->second : nullptr;
  }

 private:
  static std::int32_t narrow(std::int64_t key) { return static_cast<std::int32_t>(key); }

  mutable Mutex mutex_;
  std::unordered_map<std::int32_t, std::shared_ptr<const Record>> records_ ZEL_GUARDED_BY(mutex_);
};

// The complete outbound frame of the request's fields.
ZELData packedFrame(const CameraMsgPacket& packet, const ZELMessageFields& fields);

}  // namespace zel
