#include "outputs/h264_pictures.h"

#include <memory>
#include <vector>

#include <ZELTarkaSDK/platform/picture_colour.h>

#include "outputs/libav.h"
#include "platform/h264/h264_headers.h"

namespace zel {
namespace {

struct ParserDeleter {
  void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

}  // namespace

VideoColour colourOfPictures(std::span<const std::uint8_t> sps) {
  const auto sequence = platform::parseH264Sequence(sps);
  if (!sequence) return {};
  const platform::H264Colour& told = sequence->colour;
  const auto colour = platform::completed({platform::colourMatrixOf(told.matrix), told.primaries, told.transfer});
  const auto matrix = static_cast<std::uint8_t>(colour.matrix);
  return {told.fullRange, colour.primaries, colour.transfer, platform::isTold(told.matrix) ? told.matrix : matrix};
}

std::optional<PictureSize> sizeOfPictures(std::span<const std::uint8_t> sps, std::span<const std::uint8_t> pps,
                                          std::span<const std::uint8_t> unit) {
  std::vector<std::uint8_t> stream;
  for (const auto& set : {sps, pps}) platform::appendUnit(stream, set);
  stream.insert(stream.end(), unit.begin(), unit.end());
  const int size = static_cast<int>(stream.size());
  stream.resize(stream.size() + AV_INPUT_BUFFER_PADDING_SIZE);

  const std::unique_ptr<AVCodecParserContext, ParserDeleter> parser(av_parser_init(AV_CODEC_ID_H264));
  const std::unique_ptr<AVCodecContext, ParserDeleter> context(avcodec_alloc_context3(nullptr));
  if (!parser || !context) return std::nullopt;
  context->log_level_offset = 100;  // above every printed level
  context->codec_id = AV_CODEC_ID_H264;
  parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
  std::uint8_t* out = nullptr;
  int outSize = 0;
  av_parser_parse2(parser.get(), context.get(), &out, &outSize, stream.data(), size, 0, 0, 0);
  if (parser->width <= 0 || parser->height <= 0) return std::nullopt;
  return PictureSize{parser->width, parser->height};
}

}  // namespace zel
