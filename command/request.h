#pragma once

#include <utility>

#include "command/reply_adapters.h"
#include "command/request_engine.h"
#include "command/request_fields.h"

// Requests by the names of their rows. A call that has not the row's arguments, or whose handler has not its values,
// does not compile.

namespace zel {

template <RowName row>
inline constexpr auto kMsgType = static_cast<std::int64_t>(kRow<row>.type);

// Sends the row's request; the handler gets what its reply holds.
template <RowName row, class... Values, class... Arguments>
void request(RequestEngine& engine, RebackBlock<Values...> rebackBlock, const Arguments&... arguments) {
  engine.send(kMsgType<row>, fieldsOf<row>(arguments...), takingApart<row>(std::move(rebackBlock)));
}

// The same for a row without a reply.
template <RowName row, class... Arguments>
void tell(RequestEngine& engine, const Arguments&... arguments) {
  static_assert(kRow<row>.reply.form == Reply::Form::none, "the row has no reply");
  engine.send(kMsgType<row>, fieldsOf<row>(arguments...), nullptr);
}

}  // namespace zel
