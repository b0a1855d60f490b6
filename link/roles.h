#pragma once

#include <cstdint>

#include <ZELTarkaSDK/PreviewConsumer.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELHandlers.h>

#include "base/wire.h"

// The interfaces through which the link calls the parts above it.

namespace zel {

// The accessory object, for the de-multiplexer and the session.
// Thread: session thread, successCreateSession on the thread that opens.
class AccessoryLink {
 public:
  virtual void successCreateSession() = 0;  // a session has opened
  virtual void receivedData() = 0;          // a frame was routed, or dropped
  virtual std::int64_t firewareVersion() const = 0;
  virtual std::int64_t timeOffset() const = 0;  // milliseconds
  virtual double absoluteTime() const = 0;      // seconds since 2001, see LinkState
  virtual void sendSyncTimeCmd() = 0;
  virtual void updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime) = 0;  // milliseconds since 2001
  virtual void streamPositionLost() = 0;                                         // an invalid length: reopen

 protected:
  ~AccessoryLink() = default;
};

// The de-multiplexer, for the session.
class InboundStream {
 public:
  virtual void appendBytes(const std::uint8_t* bytes, std::size_t length) = 0;  // session thread
  virtual void parserData(ByteView lastRead) = 0;                               // appends, then parses; session thread
  virtual void clearData() = 0;                                                 // any thread
  virtual void setIsNeedDataSynchronism(bool needed) = 0;                       // any thread

 protected:
  ~InboundStream() = default;
};

// The photo parser: frames of type 3, and the failure of their capture.
// Thread: session thread, replyBlockWithError on any thread. The bytes are valid during the call only.
class PhotoConsumer {
 public:
  virtual ~PhotoConsumer() = default;
  virtual void parserData(ByteView bytes) = 0;
  virtual void replyBlockWithError(const ZELError& error) = 0;
};

// The file transfer: frames of type 9. The bytes are valid during the call only.
// Thread: session thread.
class FileReplyConsumer {
 public:
  virtual ~FileReplyConsumer() = default;
  virtual void parserUCD(ByteView bytes) = 0;
};

// The command layer, for the marker request.
class SyncDataRequester {
 public:
  // msgReqSendSyncData:rebackBlock: - requests the marker, at any status of the connection.
  // Thread: any thread.
  virtual void msgReqSendSyncData(const ZELData& marker, RebackDic rebackBlock) = 0;

 protected:
  ~SyncDataRequester() = default;
};

}  // namespace zel
