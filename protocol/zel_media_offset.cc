#include <ZELTarkaSDK/ZELMediaOffset.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>
#include <vector>

namespace {

constexpr std::size_t kLenses = 2;         // that fit into the record
constexpr std::size_t kValuesPerLens = 6;  // in the text

std::string_view withoutLeadingSpace(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

// The number's text without a plus sign, which std::from_chars does not accept; empty if no number begins there. A
// number has at most one sign.
std::string_view numberText(std::string_view text) {
  text = withoutLeadingSpace(text);
  const bool plus = text.starts_with('+');
  if (plus) text.remove_prefix(1);
  const std::string_view unsignedText = !plus && text.starts_with('-') ? text.substr(1) : text;
  const bool begins =
      !unsignedText.empty() && (unsignedText[0] == '.' || (unsignedText[0] >= '0' && unsignedText[0] <= '9'));
  return begins ? text : std::string_view();
}

std::int64_t integerValue(std::string_view text) {
  const std::string_view number = numberText(text);
  std::int64_t value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  return number.starts_with('-') ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

// A number out of the range of double: too small or too large.
float beyondDouble(std::string_view number) {
  if (number.find("e-") != number.npos || number.find("E-") != number.npos) return 0;
  return number.starts_with('-') ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity();
}

float floatValue(std::string_view text) {
  const std::string_view number = numberText(text);
  double value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec == std::errc::result_out_of_range) return beyondDouble(number);
  return static_cast<float>(value);
}

std::int32_t thousandths(std::string_view text) {
  const float value = std::trunc(floatValue(text) * 1000.0f);
  if (value >= 2147483648.0f) return std::numeric_limits<std::int32_t>::max();
  if (value < -2147483648.0f) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(value);
}

std::vector<std::string_view> parts(std::string_view text) {
  std::vector<std::string_view> result;
  if (text.empty()) return result;
  for (std::size_t at = 0; at != std::string_view::npos;) {
    const std::size_t end = text.find('_', at);
    result.push_back(text.substr(at, end - at));
    at = end == std::string_view::npos ? end : end + 1;
  }
  return result;
}

// Three decimals, whatever the locale.
void appendThousandths(std::string& text, std::int32_t value) {
  char digits[64];
  const float number = static_cast<float>(value) / 1000.0f;
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number, std::chars_format::fixed, 3).ptr;
  text.append(digits, end);
}

std::size_t lensesIn(const ZELMediaOffset& offset) { return std::min<std::size_t>(offset.lensCount, kLenses); }

std::string lensText(const ZELMediaOffset& offset) {
  if (lensesIn(offset) == 0) return "(null)";  // deliberate: a record without a lens has always been shown like this
  std::string text;
  for (std::size_t lens = 0; lens < lensesIn(offset); ++lens) {
    for (const std::int32_t value : offset.lenses[lens].p) {
      if (!text.empty()) text += '_';
      appendThousandths(text, value);
    }
  }
  return text;
}

}  // namespace

std::string getOffsetFromZELMediaOffset(const ZELMediaOffset& offset) {
  std::string text = std::to_string(lensesIn(offset)) + '_' + lensText(offset);
  for (const std::uint32_t value :
       {std::uint32_t{offset.valueA}, std::uint32_t{offset.valueB}, std::uint32_t{offset.valueC}})
    text += '_' + std::to_string(value);
  return text;
}

ZELMediaOffset getMediaOffsetFromOffset(const std::optional<std::string_view>& text) {
  ZELMediaOffset offset;
  const std::vector<std::string_view> fields = parts(text.value_or(""));
  if (fields.empty()) return offset;
  const std::int64_t count = std::min<std::int64_t>(integerValue(fields[0]), kLenses);
  offset.lensCount = static_cast<std::uint8_t>(count);
  std::size_t next = 1;
  for (std::size_t lens = 0; static_cast<std::int64_t>(lens) < count && fields.size() >= next + kValuesPerLens;
       ++lens) {
    for (auto& value : offset.lenses[lens].p) value = thousandths(fields[next++]);
  }
  if (fields.size() >= next + 2) {
    offset.valueA = static_cast<std::uint16_t>(integerValue(fields[next]));
    offset.valueB = static_cast<std::uint16_t>(integerValue(fields[next + 1]));
    next += 2;
  }
  if (next < fields.size()) offset.valueC = static_cast<std::uint32_t>(integerValue(fields[next]));
  return offset;
}

ZELOriginOffset getOriginOffsetFromOffset(const std::optional<std::string_view>& text) {
  const ZELMediaOffset offset = getMediaOffsetFromOffset(text);
  ZELOriginOffset origin;
  std::copy_n(offset.lenses[0].p.begin(), origin.lens0.size(), origin.lens0.begin());
  std::copy_n(offset.lenses[1].p.begin(), origin.lens1.size(), origin.lens1.begin());
  origin.valueA = offset.valueA;
  origin.valueB = offset.valueB;
  return origin;
}
