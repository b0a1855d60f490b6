#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/ZELData.h>

// How one kind of reply or event is parsed: the command layer's message number and the function that reads the body.
class CameraMsgParser {
 public:
  // Called with the record's msgType, the body (absent when the message has none) and the source object.
  using ParserBlock = std::function<void(std::uint64_t msgType, const std::optional<ZELData>& body, void* sourceObj)>;

  // initWithMsgType:source:parserBlock: and initWithMsgType:parserBlock:
  // Owner:  sourceObj is not owned and never cleared; it must live as long as the record.
  CameraMsgParser(std::uint64_t msgType, void* sourceObj, ParserBlock parserBlock)
      : msgType_(msgType), sourceObj_(sourceObj), parserBlock_(std::move(parserBlock)) {}
  CameraMsgParser(std::uint64_t msgType, ParserBlock parserBlock)
      : CameraMsgParser(msgType, nullptr, std::move(parserBlock)) {}

  std::uint64_t msgType() const { return msgType_; }
  void* sourceObj() const { return sourceObj_; }
  const ParserBlock& parserBlock() const { return parserBlock_; }

 private:
  std::uint64_t msgType_;
  void* sourceObj_;
  ParserBlock parserBlock_;
};
