#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include "base/has_memory_for.h"
#include "protocol/catalogue.h"

// Adapters from a reply dictionary to a handler with typed arguments.

namespace zel {

inline std::optional<ZELError> errorIn(const std::optional<ZELMessageFields>& reply) {
  return reply ? reply->get<ZELError>(key::nsError) : std::nullopt;
}

// The value of a handler's argument of type T. A missing text, byte buffer or optional number is absent, any other
// missing value is 0. The dictionary holds a Stored; a number may be wider in the handler.
template <class T, class Stored>
struct ReplyValue {
  static_assert(
      requires(const Stored& stored) { T{stored}; }, "the handler's value holds whatever the field does");
  static T in(const std::optional<ZELMessageFields>& reply, std::string_view key) {
    const Stored* stored = reply ? reply->find<Stored>(key) : nullptr;
    return stored != nullptr ? T{*stored} : T{};
  }
};
template <class T>
struct ReplyValue<std::optional<T>, T> {
  static std::optional<T> in(const std::optional<ZELMessageFields>& reply, std::string_view key) {
    return reply ? reply->get<T>(key) : std::nullopt;
  }
};

template <class Value, class Stored>
struct KeyOf {
  std::string_view key;
};

// Values that find no memory are refused, so that the handler hears of it.
template <class... Values, class... Stored>
RebackDic takingApart(const RebackBlock<Values...>& rebackBlock, KeyOf<Values, Stored>... keys) {
  if (!rebackBlock) return nullptr;
  return [rebackBlock, keys...](const std::optional<ZELMessageFields>& reply) {
    std::optional<std::tuple<std::optional<ZELError>, std::remove_cvref_t<Values>...>> taken;
    const bool isWhole = hasMemoryFor([&] {
      taken.emplace(errorIn(reply), ReplyValue<std::remove_cvref_t<Values>, Stored>::in(reply, keys.key)...);
    });
    if (!isWhole) taken.emplace(zelOSStatusError(kZELErrorRefused), std::remove_cvref_t<Values>{}...);
    std::apply(rebackBlock, *std::move(taken));
  };
}

// For the replies of a row: the handler has a value for each of their fields, of its type.
// Errors: std::bad_alloc.
template <RowName row, class... Values>
RebackDic takingApart(const RebackBlock<Values...>& rebackBlock) {
  constexpr const FieldList& kFields = kRow<row>.reply.fields;
  static_assert(sizeof...(Values) == kFields.count(), "the handler has a value for each field of the row's reply");
  return [&]<std::size_t... index>(std::index_sequence<index...>) {
    return takingApart(
        rebackBlock,
        KeyOf<Values, std::variant_alternative_t<kFields[index].type, ZELMessageFields::Value>>{kFields[index].key}...);
  }
  (std::index_sequence_for<Values...>());
}

}  // namespace zel
