// The description of an accessory, out of a file that anybody may have written: it is read whole or refused with a
// reason, never both.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/linux/accessory_description.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string fault;
  const std::string text(data, data + size);
  const auto parsed = zel::platform::parseAccessoryDescription(text, fault);
  if (parsed.has_value() != fault.empty()) std::abort();
  return 0;
}
