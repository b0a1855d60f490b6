#include "transport/marker_search.h"

#include <string_view>

#include "transport/frame.h"

namespace zel {
namespace {

std::string_view asText(ByteView bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

}  // namespace

std::optional<std::size_t> findMarker(ByteView bytes) {
  const std::size_t at = asText(bytes).find(asText(dataSynchronismValue));
  if (at == std::string_view::npos) return std::nullopt;
  return at;
}

}  // namespace zel
