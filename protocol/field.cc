#include "protocol/field.h"

#include <cassert>
#include <string>

#include "base/text.h"

namespace zel::field {
namespace {

std::string_view textUnder(const ZELMessageFields& fields, std::string_view key) {
  const std::string* text = fields.find<std::string>(key);
  return text != nullptr ? std::string_view(*text) : std::string_view();
}

void append(Bytes& body, std::string_view text) { body.insert(body.end(), text.begin(), text.end()); }

}  // namespace

void appendLowByteAsU16(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  appendRecord(body, U16(static_cast<std::uint8_t>(fields.get<std::uint16_t>(key).value_or(0))));
}

void readLowByteOfU16(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  fields.set(key, static_cast<std::uint16_t>(body.read<U16>() & 0xFF));
}

void appendRest(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  const ZELData* data = fields.find<ZELData>(key);
  if (data != nullptr) body.insert(body.end(), data->bytes().begin(), data->bytes().end());
}

void readRest(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  if (!body.rest().empty()) fields.set(key, ZELData(body.rest()));
}

void appendAscii(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  const std::string_view text = textUnder(fields, key);
  if (isAscii(text)) append(body, text);
}

void readAscii(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  const std::string_view text = asText(body.rest());
  if (isAscii(text)) fields.set(key, std::string(text));
}

void appendTerminatedName(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  const std::string_view name = textUnder(fields, key);
  if (name.empty()) return;
  append(body, name.substr(0, characterCount(name)));
  body.push_back(0);
}

void appendNameField(Bytes& body, const ZELMessageFields& fields, std::string_view key, std::size_t size) {
  const std::string_view name = textUnder(fields, key).substr(0, size);
  append(body, name);
  body.resize(body.size() + size - name.size());
}

void appendOffsetText(Bytes& body, const ZELMessageFields& fields, std::string_view key) {
  appendRecord(body, getMediaOffsetFromOffset(textUnder(fields, key)));
}

void readOffsetText(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  fields.set(key, getOffsetFromZELMediaOffset(body.read<ZELMediaOffset>()));
}

void readVideoMnd(ByteReader& body, ZELMessageFields& fields, std::string_view key) {
  Bytes bytes(body.rest().begin(), body.rest().end());
  bytes.resize(sizeof(ZELVideoMnd));
  fields.set(key, ByteReader(bytes).read<ZELVideoMnd>());
}

void neverRead(ByteReader&, ZELMessageFields&, std::string_view) {
  assert(false && "a field of requests, or of a reply with a decoder of its own");
}
void neverAppended(Bytes&, const ZELMessageFields&, std::string_view) { assert(false && "a field of replies only"); }

}  // namespace zel::field
