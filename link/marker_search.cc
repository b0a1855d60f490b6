#include "link/marker_search.h"

#include <string_view>

#include "base/text.h"
#include "protocol/frame.h"

namespace zel {
std::optional<std::size_t> findMarker(ByteView bytes) {
  const std::size_t at = asText(bytes).find(asText(dataSynchronismValue));
  if (at == std::string_view::npos) return std::nullopt;
  return at;
}

}  // namespace zel
