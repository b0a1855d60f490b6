#include "capture/zel_photo_data_parser.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace {

// A photo frame's payload:
//
//   0                   64
//   +-------------------+---------------------
//   | file name, ASCII  | the image file
//   +-------------------+---------------------
//
// The name ends at its first zero; its last byte is always treated as one.
constexpr std::size_t kNameField = 64;
constexpr std::size_t kShortestPayload = kNameField + 1;  // and one byte of image

// Limits the memory when a camera continues to send after its series is complete.
constexpr std::size_t kPicturesAfterTheAnswer = 16;

std::optional<std::string> nameIn(zel::ByteView payload) {
  const std::string_view field = zel::asText(payload.first(kNameField - 1));
  const std::string_view name = field.substr(0, field.find('\0'));
  return zel::isAscii(name) ? std::optional<std::string>(name) : std::nullopt;
}

ZELData imageIn(zel::ByteView payload) { return ZELData(payload.subspan(kNameField)); }

}  // namespace

std::unique_ptr<ZELPhotoDataParser> ZELPhotoDataParser::initWithShutterBlock(zel::platform::Queue& mainQueue,
                                                                             ZELPhotoBlock block) {
  return std::unique_ptr<ZELPhotoDataParser>(new ZELPhotoDataParser(mainQueue, Single{std::move(block)}));
}

std::unique_ptr<ZELPhotoDataParser> ZELPhotoDataParser::initWithAEBShutterCount(zel::platform::Queue& mainQueue,
                                                                                std::int32_t count,
                                                                                ZELPhotoSeriesBlock block) {
  Series series{
      static_cast<std::size_t>(std::max(count, 0)), std::move(block), {}, std::make_shared<ZELDataArray>(), {}};
  return std::unique_ptr<ZELPhotoDataParser>(new ZELPhotoDataParser(mainQueue, std::move(series)));
}

void ZELPhotoDataParser::parserData(zel::ByteView bytes) {
  post(capture_.with([bytes](Capture& capture) {
    auto* const single = std::get_if<Single>(&capture);
    return single != nullptr ? parserShutterData(*single, bytes)
                             : parserShutterAEBData(std::get<Series>(capture), bytes);
  }));
}

void ZELPhotoDataParser::replyBlockWithError(const ZELError& error) {
  post(capture_.with([&error](Capture& capture) {
    auto* const single = std::get_if<Single>(&capture);
    return single != nullptr ? replyShutterBlockWithError(*single, error, std::nullopt, std::nullopt)
                             : replyShutterAEBBlockWithError(std::get<Series>(capture), error);
  }));
}

void ZELPhotoDataParser::post(Answer answer) {
  if (answer) mainQueue_.post(std::move(answer));
}

ZELPhotoDataParser::Answer ZELPhotoDataParser::parserShutterData(Single& single, zel::ByteView bytes) {
  if (!single.shutterBlock) return nullptr;
  if (bytes.size() < kShortestPayload) {
    return replyShutterBlockWithError(single, zelOSStatusError(kZELErrorRefused), std::nullopt, std::nullopt);
  }
  return replyShutterBlockWithError(single, std::nullopt, nameIn(bytes), imageIn(bytes));
}

ZELPhotoDataParser::Answer ZELPhotoDataParser::parserShutterAEBData(Series& series, zel::ByteView bytes) {
  if (bytes.size() < kShortestPayload) {
    return replyShutterAEBBlockWithError(series, zelOSStatusError(kZELErrorRefused));
  }
  if (series.shutterAEBBlock || series.AEBFileNames.size() < series.aebPhotoCount + kPicturesAfterTheAnswer) {
    keep(series, bytes);
  }
  const bool complete = series.AEBFileNames.size() >= series.aebPhotoCount;
  return complete ? replyShutterAEBBlockWithError(series, std::nullopt) : nullptr;
}

// Both or neither, also where memory ends: a name belongs to the picture of the same number. A list that has been
// handed over and let go of is seen by nobody, and grows no more.
void ZELPhotoDataParser::keep(Series& series, zel::ByteView bytes) {
  std::string name = nameIn(bytes).value_or("");
  series.AEBFileNames.reserve(series.AEBFileNames.size() + 1);
  const auto images = series.AEBImageDatas ? series.AEBImageDatas : series.handedOver.lock();
  if (images) images->append(imageIn(bytes));
  series.AEBFileNames.push_back(std::move(name));
}

ZELPhotoDataParser::Answer ZELPhotoDataParser::replyShutterBlockWithError(Single& single,
                                                                          const std::optional<ZELError>& error,
                                                                          const std::optional<std::string>& fileName,
                                                                          const std::optional<ZELData>& imageData) {
  if (!single.shutterBlock) return nullptr;
  // The handler is copied, and let go only once its call is made: one for which memory ends waits on.
  Answer answer = [block = single.shutterBlock, error, fileName, imageData] { block(error, fileName, imageData); };
  single.shutterBlock = nullptr;
  return answer;
}

ZELPhotoDataParser::Answer ZELPhotoDataParser::replyShutterAEBBlockWithError(Series& series,
                                                                             const std::optional<ZELError>& error) {
  if (!series.shutterAEBBlock) return nullptr;
  Answer answer = [block = series.shutterAEBBlock, error,  // copied as above
                   names = error ? std::vector<std::string>() : series.AEBFileNames,
                   images = error ? nullptr : series.AEBImageDatas] { block(error, names, images); };
  series.shutterAEBBlock = nullptr;
  series.handedOver = std::exchange(series.AEBImageDatas, nullptr);
  return answer;
}
