#include "capture/zel_photo_data_parser.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "transport/text.h"

namespace {

// A photo frame's payload:
//
//   0                   64
//   +-------------------+---------------------
//   | file name, ASCII  | the image file
//   +-------------------+---------------------
//
// The name ends at its first zero; its last byte counts as one whatever it holds.
constexpr std::size_t kNameField = 64;
constexpr std::size_t kShortestPayload = kNameField + 1;  // and one byte of image

// A camera that goes on sending after its series was answered does not fill the memory.
constexpr std::size_t kPicturesAfterTheAnswer = 16;

std::optional<std::string> fileName(zel::ByteView payload) {
  const std::string_view field = zel::asText(payload.first(kNameField - 1));
  const std::string_view name = field.substr(0, field.find('\0'));
  return zel::isAscii(name) ? std::optional<std::string>(name) : std::nullopt;
}

ZELData image(zel::ByteView payload) { return ZELData(payload.subspan(kNameField)); }

}  // namespace

std::unique_ptr<ZELPhotoDataParser> ZELPhotoDataParser::initWithShutterBlock(zel::platform::Queue& mainQueue,
                                                                             ZELPhotoBlock block) {
  return std::unique_ptr<ZELPhotoDataParser>(new ZELPhotoDataParser(mainQueue, Single{std::move(block)}));
}

std::unique_ptr<ZELPhotoDataParser> ZELPhotoDataParser::initWithAEBShutterCount(zel::platform::Queue& mainQueue,
                                                                                std::int32_t count,
                                                                                ZELPhotoSeriesBlock block) {
  Series series{static_cast<std::size_t>(std::max(count, 0)), std::move(block), {}, std::make_shared<ZELDataArray>()};
  return std::unique_ptr<ZELPhotoDataParser>(new ZELPhotoDataParser(mainQueue, std::move(series)));
}

void ZELPhotoDataParser::parserData(zel::ByteView bytes) {
  const zel::MutexLock lock(mutex_);
  if (auto* single = std::get_if<Single>(&capture_)) return parse(*single, bytes);
  parse(std::get<Series>(capture_), bytes);
}

void ZELPhotoDataParser::replyBlockWithError(const ZELError& error) {
  const zel::MutexLock lock(mutex_);
  if (auto* single = std::get_if<Single>(&capture_)) return reply(*single, error, std::nullopt, std::nullopt);
  reply(std::get<Series>(capture_), error);
}

void ZELPhotoDataParser::parse(Single& single, zel::ByteView bytes) {
  if (!single.block) return;
  if (bytes.size() < kShortestPayload) {
    return reply(single, zelOSStatusError(kZELErrorRefused), std::nullopt, std::nullopt);
  }
  reply(single, std::nullopt, fileName(bytes), image(bytes));
}

void ZELPhotoDataParser::parse(Series& series, zel::ByteView bytes) {
  if (bytes.size() < kShortestPayload) {
    reply(series, zelOSStatusError(kZELErrorRefused));
  } else if (series.block || series.names.size() < series.count + kPicturesAfterTheAnswer) {
    series.names.push_back(fileName(bytes).value_or(""));
    series.images->append(image(bytes));
  }
  if (series.names.size() >= series.count) reply(series, std::nullopt);
}

void ZELPhotoDataParser::reply(Single& single, const std::optional<ZELError>& error,
                               const std::optional<std::string>& name, const std::optional<ZELData>& data) {
  if (!single.block) return;
  mainQueue_.post([block = std::exchange(single.block, nullptr), error, name, data] { block(error, name, data); });
}

void ZELPhotoDataParser::reply(Series& series, const std::optional<ZELError>& error) {
  if (!series.block) return;
  mainQueue_.post([block = std::exchange(series.block, nullptr), error,
                   names = error ? std::vector<std::string>() : series.names,
                   images = error ? nullptr : series.images] { block(error, names, images); });
}
