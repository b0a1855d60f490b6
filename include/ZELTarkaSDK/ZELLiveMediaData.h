#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>

// One encoded piece of media, for a host that queues what it receives. The host defines the types.
// Units:  timestamp in milliseconds.
class ZEL_EXPORT ZELLiveMediaData {
 public:
  // initWithMediaData:timestamp:type: - keyFrame is false at first.
  static std::unique_ptr<ZELLiveMediaData> initWithMediaData(ZELData data, std::int64_t timestamp, std::uint64_t type) {
    return std::unique_ptr<ZELLiveMediaData>(new ZELLiveMediaData(std::move(data), timestamp, type));
  }

  const ZELData& data() const { return data_; }
  bool keyFrame() const { return keyFrame_; }
  std::int64_t timestamp() const { return timestamp_; }
  std::uint64_t type() const { return type_; }
  void setData(ZELData data) { data_ = std::move(data); }
  void setKeyFrame(bool keyFrame) { keyFrame_ = keyFrame; }
  void setTimestamp(std::int64_t timestamp) { timestamp_ = timestamp; }
  void setType(std::uint64_t type) { type_ = type; }

 private:
  ZELLiveMediaData(ZELData data, std::int64_t timestamp, std::uint64_t type)
      : data_(std::move(data)), timestamp_(timestamp), type_(type) {}

  ZELData data_;
  bool keyFrame_ = false;
  std::int64_t timestamp_;
  std::uint64_t type_;
};
