#pragma once

#include <concepts>

#include "command/reply_adapters.h"
#include "command/request_engine.h"
#include "command/request_fields.h"

// Requests by the names of their rows. A call that has not the row's arguments, or whose handler has not its values,
// does not compile.

namespace zel {

template <RowName row>
inline constexpr auto kMsgType = static_cast<std::int64_t>(kRow<row>.type);

// Sends the row's request. reply makes the handler of its answer, null for nobody.
// Errors: false where there was no memory for it; the handler then gets 101.
template <RowName row, std::invocable MakeReply, class... Arguments>
bool send(RequestEngine& engine, const MakeReply& reply, const Arguments&... arguments) {
  return engine.orRefuse(reply, [&] { engine.send(kMsgType<row>, fieldsOf<row>(arguments...), reply()); });
}

// The same; the handler gets what the reply holds.
template <RowName row, class... Values, class... Arguments>
void request(RequestEngine& engine, RebackBlock<Values...> rebackBlock, const Arguments&... arguments) {
  send<row>(
      engine, [&] { return takingApart<row>(rebackBlock); }, arguments...);
}

// The same for a row without a reply.
template <RowName row, class... Arguments>
void tell(RequestEngine& engine, const Arguments&... arguments) {
  static_assert(kRow<row>.reply.form == Reply::Form::none, "the row has no reply");
  send<row>(
      engine, [] { return RebackDic(); }, arguments...);
}

}  // namespace zel
