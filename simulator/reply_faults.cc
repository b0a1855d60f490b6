#include "simulator/reply_faults.h"

#include "simulator/camera_answers.h"

namespace zel::simulator {
namespace {

constexpr std::uint8_t kYes = 1;
constexpr std::size_t kMostTrailing = 16;

}  // namespace

Bytes replyAfterFaults(const Faults& faults, std::uint16_t code, Bytes body, std::mt19937_64& random) {
  if (faults.shortReply.contains(code)) return {};
  const bool saysYes = hasFlag(code) && !body.empty() && body[0] == kYes;
  if (saysYes && faults.highFlags.contains(code)) body[0] = static_cast<std::uint8_t>(2 + random() % 254);
  if (faults.trailingBytes.contains(code)) {
    for (auto left = 1 + random() % kMostTrailing; left > 0; --left)
      body.push_back(static_cast<std::uint8_t>(random()));
  }
  return body;
}

}  // namespace zel::simulator
