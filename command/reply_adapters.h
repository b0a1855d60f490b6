#pragma once

#include <concepts>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include "base/has_memory_for.h"

// Adapters that take a reply dictionary apart for a handler with typed arguments.

namespace zel {

// A request's handler in the form that the engine keeps. Making that takes memory; where there is none, the handler is
// still here to be told so.
class ReplyHandler {
 public:
  // Null where nobody wants the reply.
  // Errors: std::bad_alloc.
  virtual RebackDic made() const = 0;

 protected:
  ~ReplyHandler() = default;
};

template <std::invocable Make>
class LazyReplyHandler final : public ReplyHandler {
 public:
  explicit LazyReplyHandler(Make make) : make_(std::move(make)) {}
  RebackDic made() const override { return make_(); }

 private:
  const Make make_;
};

inline std::optional<ZELError> errorIn(const std::optional<ZELMessageFields>& reply) {
  return reply ? reply->get<ZELError>(key::nsError) : std::nullopt;
}

// The value that a handler's argument of type T gets: text, bytes and boxed numbers may be absent, others are 0 then.
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

// keys: one for each of the handler's values, in their order. Values that find no memory are refused, so that the
// handler hears of it.
template <class... Values, class... Keys>
RebackDic apart(const RebackBlock<Values...>& rebackBlock, Keys... keys) {
  static_assert(sizeof...(Values) == sizeof...(Keys), "a key for each value");
  if (!rebackBlock) return nullptr;
  return [rebackBlock, keys...](const std::optional<ZELMessageFields>& reply) {
    std::optional<std::tuple<std::optional<ZELError>, std::remove_cvref_t<Values>...>> taken;
    const bool isWhole = hasMemoryFor(
        [&] { taken.emplace(errorIn(reply), ReplyValue<std::remove_cvref_t<Values>>::in(reply, keys)...); });
    if (!isWhole) taken.emplace(zelOSStatusError(kZELErrorRefused), std::remove_cvref_t<Values>{}...);
    std::apply(rebackBlock, *std::move(taken));
  };
}

// The same, made when the request is. It takes no memory: the handler is moved.
template <class... Values, class... Keys>
auto takingApart(RebackBlock<Values...> rebackBlock, Keys... keys) {
  return LazyReplyHandler([rebackBlock = std::move(rebackBlock), keys...] { return apart(rebackBlock, keys...); });
}

}  // namespace zel
