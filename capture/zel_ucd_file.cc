#include "capture/zel_ucd_file.h"

#include <ZELTarkaSDK/WireConstants.h>

#include <algorithm>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "base/has_memory_for.h"
#include "base/text.h"
#include "protocol/frame.h"

namespace {

// The frame of a file for the camera:
//
//   0        4       6           8          10        74
//   +--------+-------+-----------+----------+---------+-----------
//   | length | 9     | file type | reserved | path    | the file
//   +--------+-------+-----------+----------+---------+-----------
constexpr std::size_t kPathField = 64;
constexpr std::size_t kFileHeader = zel::kFrameHeader + 2 + 2 + kPathField;  // file type, reserved, path
static_assert(kLargestFile + kFileHeader == std::numeric_limits<std::uint32_t>::max());

// The camera's reply:
//
//   0        2      4        6
//   +--------+------+--------+------------------
//   | unread | kind | status | path, zero-padded
//   +--------+------+--------+------------------
constexpr std::size_t kReplyHeader = 2 + 2 + 2;
constexpr std::uint16_t kUploadReply = 2;
constexpr std::uint16_t kFailed = 1;

// Removes the first three characters, wherever the drive is; hosts rely on the resulting name.
std::string normalisedPath(const std::string& path) {
  for (const std::string_view drive : kDrives) {
    if (path.find(drive) != std::string::npos) return std::string(zel::withoutCharacters(path, 3));
  }
  return path;
}

ZELData fileFrame(std::int64_t type, const std::string& path, zel::ByteView file) {
  zel::Bytes frame;
  frame.reserve(kFileHeader + file.size());
  zel::appendLittleEndian(frame, static_cast<std::uint32_t>(kFileHeader + file.size()));
  zel::appendLittleEndian(frame, static_cast<std::uint16_t>(zel::FrameType::file));
  zel::appendLittleEndian(frame, static_cast<std::uint16_t>(type));
  zel::appendLittleEndian(frame, std::uint16_t{0});
  frame.insert(frame.end(), path.begin(),
               path.begin() + static_cast<std::ptrdiff_t>(std::min(path.size(), kPathField)));
  frame.resize(kFileHeader);
  frame.insert(frame.end(), file.begin(), file.end());
  return ZELData(std::move(frame));
}

std::string repliedPath(zel::ByteView reply) {
  const auto field = reply.subspan(kReplyHeader, std::min(reply.size() - kReplyHeader, kPathField));
  return {field.begin(), std::find(field.begin(), field.end(), 0)};
}

}  // namespace

bool ZELUCDFile::fitsAFrame(std::uint64_t fileSize) { return fileSize <= kLargestFile; }

void ZELUCDFile::sendFileWithType(std::int64_t type, const std::optional<std::string>& filePath,
                                  const ZELData& fileData, const zel::RebackBlock<>& rebackBlock) {
  const bool fits = fitsAFrame(fileData.size());
  if (!fits && !rebackBlock) return;
  if (!fits || !zel::hasMemoryFor([&] { send(type, filePath.value_or(""), fileData, rebackBlock); })) {
    refuse(rebackBlock);
  }
}

void ZELUCDFile::refuse(const zel::RebackBlock<>& rebackBlock) {
  const bool isTold = rebackBlock && zel::hasMemoryFor([&] { post(rebackBlock, zelOSStatusError(kZELErrorRefused)); });
  if (!isTold) lostForMemory_.fetch_add(1);
}

void ZELUCDFile::send(std::int64_t type, const std::string& filePath, const ZELData& fileData,
                      const zel::RebackBlock<>& rebackBlock) {
  std::optional<zel::RebackBlock<>> handler(rebackBlock);
  const std::string path = normalisedPath(filePath);
  const ZELData frame = fileFrame(type, path, fileData.bytes());
  const bool waits = !path.empty() && *handler;  // a reply without a path completes all transfers
  if (waits) blocks_.with([&](Blocks& blocks) { blocks.announce(path); });
  try {
    writeData_(frame);
  } catch (const std::bad_alloc&) {
    // A file that finds no memory was not sent: nothing waits for its answer.
    if (waits) blocks_.with([&](Blocks& blocks) { blocks.withdraw(path); });
    throw;
  }
  if (waits) wait(path, handler);
}

void ZELUCDFile::wait(const std::string& path, std::optional<zel::RebackBlock<>>& handler) {
  const auto answer = blocks_.with([&](Blocks& blocks) { return blocks.put(path, handler); });
  if (answer) postOrRefuse(*handler, *answer);
}

void ZELUCDFile::parserUCD(zel::ByteView bytes) {
  if (bytes.size() < kReplyHeader) return replyAllBlockWithCameraError();
  if (zel::loadLittleEndian<std::uint16_t>(bytes.data() + 2) != kUploadReply) return;
  const bool failed = zel::loadLittleEndian<std::uint16_t>(bytes.data() + 4) == kFailed;
  const Answer answer = failed ? Answer(zelOSStatusError(kZELErrorRefused)) : std::nullopt;
  const std::string path = repliedPath(bytes);
  bool expected = false;
  const auto block = blocks_.with([&](Blocks& blocks) {
    expected = blocks.isExpected(path);
    return blocks.take(path, answer);
  });
  // Deliberate: a transfer whose path is named is completed here, at once. A reply with an unknown path completes all
  // transfers, because a path longer than the field is returned cut.
  if (block) return (*block)(answer);
  if (!expected) replyAllBlockWithError(answer);
}

void ZELUCDFile::replyAllBlockWithError(const std::optional<ZELError>& error) {
  std::vector<zel::RebackBlock<>> blocks;
  const bool isTaken =
      zel::hasMemoryFor([&] { blocks = blocks_.with([&](Blocks& all) { return all.takeAll(error); }); });
  for (const auto& block : blocks) postOrRefuse(block, error);
  if (isTaken) return;
  while (const auto block = takeAny()) postOrRefuse(*block, error);
}

void ZELUCDFile::replyAllBlockWithErrorCode(int code) {
  if (zel::hasMemoryFor([&] { replyAllBlockWithError(zelOSStatusError(code)); })) return;
  while (const auto block = takeAny()) refuse(*block);
}

void ZELUCDFile::post(const zel::RebackBlock<>& rebackBlock, const Answer& answer) {
  mainQueue_.post([rebackBlock, answer] { rebackBlock(answer); });
}

void ZELUCDFile::postOrRefuse(const zel::RebackBlock<>& rebackBlock, const Answer& answer) {
  if (!zel::hasMemoryFor([&] { post(rebackBlock, answer); })) refuse(rebackBlock);
}
