#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "base/wire.h"

// A consumer of payloads of data type 7.
class ZELCameraDataParser {
 public:
  // Called with the source object (null after its destruction) and the payload, which is valid during the call only.
  using ParserBlock = std::function<void(const std::shared_ptr<void>& srcObj, zel::ByteView payload)>;

  // initWithDataType:source:parserBlock:
  // Owner:  srcObj is held weakly.
  ZELCameraDataParser(std::int32_t dataType, std::weak_ptr<void> srcObj, ParserBlock parserBlock)
      : dataType_(dataType), srcObj_(std::move(srcObj)), parserBlock_(std::move(parserBlock)) {}

  std::int32_t dataType() const { return dataType_; }
  std::shared_ptr<void> srcObj() const { return srcObj_.lock(); }
  const ParserBlock& parserBlock() const { return parserBlock_; }

 private:
  std::int32_t dataType_;
  std::weak_ptr<void> srcObj_;
  ParserBlock parserBlock_;
};
