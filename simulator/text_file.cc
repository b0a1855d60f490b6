#include "simulator/text_file.h"

#include <span>

namespace zel::simulator {
namespace {

constexpr std::size_t kTextNameField = 32, kTextHeader = kTextNameField + 2;

TextFileResult create(Card& card, const Storage& storage, std::span<const std::uint8_t> request) {
  if (request.size() < kTextHeader) return TextFileResult::malformed;
  const auto text = request.subspan(kTextHeader);
  if (text.size() != numberAt<std::uint16_t>(request, kTextNameField)) return TextFileResult::malformed;
  const std::string name = textIn(request.first(kTextNameField));
  if (!safePath(name)) return TextFileResult::badName;
  if (!card.takes(text.size())) return TextFileResult::cardFull;
  if (!storage.write(name, text)) return TextFileResult::notWritten;
  card.take(text.size());
  return TextFileResult::done;
}

}  // namespace

Bytes createTextFile(Card& card, const Storage& storage, const Bytes& request) {
  const TextFileResult result = create(card, storage, request);
  return {static_cast<std::uint8_t>(result == TextFileResult::done), static_cast<std::uint8_t>(result)};
}

}  // namespace zel::simulator
