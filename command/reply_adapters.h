#pragma once

#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

// Adapters from a reply dictionary to a handler with typed arguments.

namespace zel {

inline std::optional<ZELError> errorIn(const std::optional<ZELMessageFields>& reply) {
  return reply ? reply->get<ZELError>(key::nsError) : std::nullopt;
}

// The value of a handler's argument of type T. A missing text, byte buffer or optional number is absent, any other
// missing value is 0.
template <class T>
struct ReplyValue {
  static T in(const std::optional<ZELMessageFields>& reply, std::string_view key) {
    return reply ? reply->get<T>(key).value_or(T{}) : T{};
  }
};
template <class T>
struct ReplyValue<std::optional<T>> {
  static std::optional<T> in(const std::optional<ZELMessageFields>& reply, std::string_view key) {
    return reply ? reply->get<T>(key) : std::nullopt;
  }
};

// keys: one for each of the handler's values, in their order.
template <class... Values, class... Keys>
RebackDic takingApart(RebackBlock<Values...> rebackBlock, Keys... keys) {
  static_assert(sizeof...(Values) == sizeof...(Keys), "a key for each value");
  if (!rebackBlock) return nullptr;
  return [rebackBlock = std::move(rebackBlock), keys...](const std::optional<ZELMessageFields>& reply) {
    rebackBlock(errorIn(reply), ReplyValue<std::remove_cvref_t<Values>>::in(reply, keys)...);
  };
}

}  // namespace zel
