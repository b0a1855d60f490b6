#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <ZELTarkaSDK/ZELHandlers.h>

#include "platform/mutex.h"
#include "platform/queues.h"
#include "transport/roles.h"

// Turns the photo frames that follow one shutter command into its answer: one picture, or a bracketed series. One
// parser serves one command; its handler is called at most once.
// Owner:  mainQueue must outlive the object.
// Thread: parserData on the session thread, the rest on any thread; handlers run on the main queue.
class ZELPhotoDataParser final : public zel::PhotoConsumer {
 public:
  // initWithShutterBlock: - expects one picture.
  static std::unique_ptr<ZELPhotoDataParser> initWithShutterBlock(zel::platform::Queue& mainQueue, ZELPhotoBlock block);

  // initWithAEBShutterCount:photoBlock: - expects that many; with 0 the first picture answers.
  static std::unique_ptr<ZELPhotoDataParser> initWithAEBShutterCount(zel::platform::Queue& mainQueue,
                                                                     std::int32_t count, ZELPhotoSeriesBlock block);

  // parserData:size: - one photo frame's payload. Shorter than a name and one byte of image it fails the capture with
  // 101.
  void parserData(zel::ByteView bytes) override;

  // replyBlockWithError: - the command failed.
  void replyBlockWithError(const ZELError& error) override;

 private:
  struct Single {
    ZELPhotoBlock block;  // empty once it has been called
  };
  struct Series {
    std::size_t count = 0;
    ZELPhotoSeriesBlock block;  // empty once it has been called
    std::vector<std::string> names;
    std::shared_ptr<ZELDataArray> images;
  };

  ZELPhotoDataParser(zel::platform::Queue& mainQueue, std::variant<Single, Series> capture)
      : mainQueue_(mainQueue), capture_(std::move(capture)) {}

  void parse(Single& single, zel::ByteView bytes) ZEL_REQUIRES(mutex_);
  void parse(Series& series, zel::ByteView bytes) ZEL_REQUIRES(mutex_);
  // Take the handler and schedule its one call.
  void reply(Single& single, const std::optional<ZELError>& error, const std::optional<std::string>& name,
             const std::optional<ZELData>& image) ZEL_REQUIRES(mutex_);
  void reply(Series& series, const std::optional<ZELError>& error) ZEL_REQUIRES(mutex_);

  zel::platform::Queue& mainQueue_;
  zel::Mutex mutex_;
  std::variant<Single, Series> capture_ ZEL_GUARDED_BY(mutex_);
};
