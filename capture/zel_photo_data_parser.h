#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/platform/queues.h>

#include "base/shared_value.h"
#include "link/roles.h"

// Turns the photo frames that follow one shutter command into its result: one picture, or a bracketed series. Each
// command has its own parser; its handler is called at most once.
// All pictures of a series are kept until it is complete, however large the camera makes them, and up to 16 that come
// after it. A host for which this may be more than it has must end the capture, or the connection, by itself.
// Owner:  mainQueue must outlive the object.
// Thread: parserData on the session thread, the rest on any thread; handlers run on the main queue.
// Errors: std::bad_alloc where memory ends; that picture is lost, and the handler waits on.
class ZELPhotoDataParser final : public zel::PhotoConsumer {
 public:
  // initWithShutterBlock: - expects one picture.
  static std::unique_ptr<ZELPhotoDataParser> initWithShutterBlock(zel::platform::Queue& mainQueue, ZELPhotoBlock block);

  // initWithAEBShutterCount:photoBlock: - expects that many pictures; with 0 the first picture completes it.
  static std::unique_ptr<ZELPhotoDataParser> initWithAEBShutterCount(zel::platform::Queue& mainQueue,
                                                                     std::int32_t count, ZELPhotoSeriesBlock block);

  // parserData:size: - one photo frame's payload. If it is shorter than a name and one byte of image, the capture fails
  // with 101.
  void parserData(zel::ByteView bytes) override;

  // replyBlockWithError: - the command failed.
  void replyBlockWithError(const ZELError& error) override;

 private:
  // `type` 0 and 1 of the interface.
  struct Single {
    ZELPhotoBlock shutterBlock;  // empty once it has been called
  };
  struct Series {
    std::size_t aebPhotoCount = 0;
    ZELPhotoSeriesBlock shutterAEBBlock;  // empty once it has been called
    std::vector<std::string> AEBFileNames;
    std::shared_ptr<ZELDataArray> AEBImageDatas;  // null once it has been handed over
    std::weak_ptr<ZELDataArray> handedOver;       // to be added to for as long as somebody has it
  };

  using Capture = std::variant<Single, Series>;

  ZELPhotoDataParser(zel::platform::Queue& mainQueue, Capture capture)
      : mainQueue_(mainQueue), capture_(std::move(capture)) {}

  // The call of a handler, for the main queue; null when there is none.
  using Answer = zel::platform::Task;
  // Each removes the handler that it completes. The call is posted after the lock is released.
  static Answer parserShutterData(Single& single, zel::ByteView bytes);
  static Answer parserShutterAEBData(Series& series, zel::ByteView bytes);
  static void keep(Series& series, zel::ByteView bytes);
  static Answer replyShutterBlockWithError(Single& single, const std::optional<ZELError>& error,
                                           const std::optional<std::string>& fileName,
                                           const std::optional<ZELData>& imageData);
  static Answer replyShutterAEBBlockWithError(Series& series, const std::optional<ZELError>& error);
  void post(Answer answer);

  zel::platform::Queue& mainQueue_;
  zel::Guarded<Capture> capture_;
};
