#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

#include <ZELTarkaSDK/ZELMessageFields.h>

#include "base/byte_reader.h"
#include "base/wire.h"
#include "protocol/records.h"

namespace zel {

template <class T, class... Types>
consteval std::size_t placeAmong(const std::variant<Types...>*) {
  constexpr std::array kIsThis = {std::same_as<T, Types>...};
  return static_cast<std::size_t>(std::ranges::find(kIsThis, true) - kIsThis.begin());
}
// Which of the types that a dictionary holds T is.
template <class T>
inline constexpr std::size_t kTypeNumber = placeAmong<T>(static_cast<ZELMessageFields::Value*>(nullptr));

// One field of a message's body: its wire form and its key in the dictionary.
// A missing key is packed as 0, or as nothing if the field has no fixed size.
struct Field {
  std::string_view layout;  // for people
  std::string_view key;
  std::size_t type;  // of its value in the dictionary: a kTypeNumber
  std::size_t size;  // bytes on the wire; the minimum if it has no fixed size
  void (*append)(Bytes& body, const ZELMessageFields& fields, std::string_view key);
  void (*read)(ByteReader& body, ZELMessageFields& fields, std::string_view key);
};

// The fields of one body, in wire order.
class FieldList {
 public:
  consteval FieldList() = default;
  consteval FieldList(std::initializer_list<Field> fields) {
    for (const Field& field : fields) fields_[count_++] = field;
  }

  constexpr const Field* begin() const { return fields_.data(); }
  constexpr const Field* end() const { return fields_.data() + count_; }
  constexpr bool empty() const { return count_ == 0; }
  constexpr std::size_t count() const { return count_; }
  constexpr const Field& operator[](std::size_t index) const { return fields_[index]; }

  // Their minimum size in bytes.
  constexpr std::size_t size() const {
    std::size_t sum = 0;
    for (const Field& field : *this) sum += field.size;
    return sum;
  }

 private:
  std::array<Field, 6> fields_{};
  std::size_t count_ = 0;
};

namespace field {

// The wire's type may be smaller than the dictionary's; the number is then truncated to its low bits.
template <class Wire, class Value>
void appendNumber(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  const Value* value = fields.find<Value>(key);
  appendRecord(body, Le<Wire>(static_cast<Wire>(value != nullptr ? *value : Value{})));
}
template <class Wire, class Value>
void readNumber(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  fields.set(key, static_cast<Value>(Wire{body.read<Le<Wire>>()}));
}
template <class Wire, class Value = Wire>
consteval Field number(std::string_view key) {
  return {numberName<Wire>(),     key, kTypeNumber<Value>, sizeof(Wire), appendNumber<Wire, Value>,
          readNumber<Wire, Value>};
}

template <WireRecord R>
void appendRecordField(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  const R* record = fields.find<R>(key);
  appendRecord(body, record != nullptr ? *record : R{});
}
template <WireRecord R>
void readRecordField(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  fields.set(key, body.read<R>());
}

void appendLowByteAsU16(Bytes& body, const ZELMessageFields& fields, std::string_view key);
void readLowByteOfU16(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void appendRest(Bytes& body, const ZELMessageFields& fields, std::string_view key);
void readRest(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void appendAscii(Bytes& body, const ZELMessageFields& fields, std::string_view key);
void readAscii(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void appendTerminatedName(Bytes& body, const ZELMessageFields& fields, std::string_view key);
void appendNameField(Bytes& body, const ZELMessageFields& fields, std::string_view key, std::size_t size);
void appendOffsetText(Bytes& body, const ZELMessageFields& fields, std::string_view key);
void readOffsetText(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void readVideoMnd(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void neverRead(ByteReader& body, ZELMessageFields& fields, std::string_view key);
void neverAppended(Bytes& body, const ZELMessageFields& fields, std::string_view key);

consteval Field u8(std::string_view key) { return number<std::uint8_t>(key); }
consteval Field u16(std::string_view key) { return number<std::uint16_t>(key); }
consteval Field s16(std::string_view key) { return number<std::int16_t>(key); }
consteval Field u32(std::string_view key) { return number<std::uint32_t>(key); }
consteval Field s32(std::string_view key) { return number<std::int32_t>(key); }
consteval Field u64(std::string_view key) { return number<std::uint64_t>(key); }
consteval Field s64(std::string_view key) { return number<std::int64_t>(key); }

// One or two bytes on the wire, an int in the dictionary.
consteval Field u8OfInt(std::string_view key) { return number<std::uint8_t, std::int32_t>(key); }
consteval Field u16OfInt(std::string_view key) { return number<std::uint16_t, std::int32_t>(key); }

// Deliberate: only the first of these two bytes was ever written and read, and cameras expect that.
consteval Field lowByteOfU16(std::string_view key) {
  return {"u16, of which only the low byte counts",
          key,
          kTypeNumber<std::uint16_t>,
          2,
          appendLowByteAsU16,
          readLowByteOfU16};
}

template <WireRecord R>
consteval Field record(std::string_view layout, std::string_view key) {
  return {layout, key, kTypeNumber<R>, sizeof(R), appendRecordField<R>, readRecordField<R>};
}

// Bytes to the end, possibly none.
consteval Field rest(std::string_view key) {
  return {"bytes to the end", key, kTypeNumber<ZELData>, 0, appendRest, readRest};
}

// ASCII text to the end, at least one byte in a reply. Other text is packed as nothing and read as absent.
consteval Field ascii(std::string_view key) {
  return {"ASCII text to the end", key, kTypeNumber<std::string>, 1, appendAscii, readAscii};
}

// A file name: as many of its UTF-8 bytes as it has characters, and a zero. Deliberate: a name that is not ASCII is cut
// short, as it always was. An empty name gives an empty body.
consteval Field terminatedName(std::string_view key) {
  return {"UTF-8 name, zero-terminated", key, kTypeNumber<std::string>, 0, appendTerminatedName, neverRead};
}

// A file name that the camera tells. Its reply has a decoder of its own, since a name that is not UTF-8 is a refusal.
consteval Field toldName(std::string_view key) {
  return {"UTF-8 name to its zero", key, kTypeNumber<std::string>, 0, neverAppended, neverRead};
}

// A file name in a field of fixed size, padded with zeros; a longer one is cut and has no terminator.
template <std::size_t size>
consteval Field nameField(std::string_view layout, std::string_view key) {
  return {layout,
          key,
          kTypeNumber<std::string>,
          size,
          [](Bytes& body, const ZELMessageFields& fields, std::string_view name) {
            appendNameField(body, fields, name, size);
          },
          neverRead};
}

// The lens offset: a record on the wire, its text in the dictionary.
consteval Field offsetText(std::string_view key) {
  return {"media offset record (80)", key,           kTypeNumber<std::string>, sizeof(ZELMediaOffset),
          appendOffsetText,           readOffsetText};
}

// A video metadata record; missing bytes are 0, extra bytes are ignored.
consteval Field videoMnd(std::string_view key) {
  return {"VideoMnd record (up to 192)", key, kTypeNumber<ZELVideoMnd>, 0, neverAppended, readVideoMnd};
}

}  // namespace field
}  // namespace zel
