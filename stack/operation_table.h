#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "protocol/catalogue.h"

// Makes an operation that is called by its name out of a member function and the row of the catalogue that it sends.

namespace zel::binding {

using Given = std::span<const Operation::Value>;

// -- Parameters: what stands for one, and how it is made of that.

template <class T>
const T* find(const Operation::Value& given) {
  return given ? std::get_if<T>(&*given) : nullptr;
}

template <class T>
struct Argument {
  using Value = T;
  static T from(const Operation::Value& given) { return find<T>(given) != nullptr ? *find<T>(given) : T{}; }
};
template <class T>
struct Argument<std::optional<T>> {
  using Value = T;
  static std::optional<T> from(const Operation::Value& given) {
    return find<T>(given) != nullptr ? std::optional(*find<T>(given)) : std::nullopt;
  }
};
// The media library's objects are made of the camera's records.
template <>
struct Argument<ZELCameraUCD::Gps> {
  using Value = ZELGpsData;
  static ZELCameraUCD::Gps from(const Operation::Value& given) {
    const auto record = Argument<Value>::from(given);
    return ZELMediaGps::initWithLatitude(record.latitude, record.longitude, record.altitude);
  }
};
template <>
struct Argument<ZELCameraUCD::Gyro> {
  using Value = ZELGyroData;
  static ZELCameraUCD::Gyro from(const Operation::Value& given) {
    return ZELMediaGyro::initWithGyroData(Argument<Value>::from(given));
  }
};
template <>
struct Argument<ZELCameraUCD::Orientation> {
  using Value = ZELOrientationData;
  static ZELCameraUCD::Orientation from(const Operation::Value& given) {
    const auto record = Argument<Value>::from(given);
    return ZELMediaOrientation::initWithX(record.x, record.y, record.z, record.w);
  }
};

// -- Handlers

template <class T>
struct HandlerMaker {
  static constexpr bool isHandler = false;
  static constexpr std::size_t values = 0;
};
template <class... Values>
struct HandlerMaker<RebackBlock<Values...>> {
  static constexpr bool isHandler = true;
  static constexpr std::size_t values = sizeof...(Values);

  static RebackBlock<Values...> make(const Operation::Handler& handler, bool valuesWithRefusal) {
    if (!handler) return nullptr;
    return [handler, valuesWithRefusal](const std::optional<ZELError>& error, Values... values) {
      if (error && !valuesWithRefusal) return handler(error, {});
      handler(error, {Operation::Value(values)...});
    };
  }
};
template <>
struct HandlerMaker<RebackDic> {
  static constexpr bool isHandler = true;
  static constexpr std::size_t values = 0;

  static RebackDic make(const Operation::Handler& handler, bool) {
    if (!handler) return nullptr;
    return [handler](const std::optional<ZELMessageFields>& reply) {
      handler(reply ? reply->get<ZELError>(key::nsError) : std::nullopt, {});
    };
  }
};

template <class T>
inline constexpr bool kIsPhotoHandler = std::is_same_v<T, ZELPhotoBlock> || std::is_same_v<T, ZELPhotoSeriesBlock>;
template <class T>
inline constexpr bool kIsHandler = HandlerMaker<T>::isHandler;
template <class T>
inline constexpr std::size_t kValues = kIsPhotoHandler<T> ? 0 : HandlerMaker<T>::values;

// -- The call

inline ZELCameraUCD& objectOf(CameraStack& stack, ZELCameraUCD*) { return stack.ucd(); }
inline ZELCameraManager& objectOf(CameraStack& stack, ZELCameraManager*) { return stack.manager(); }

// All member functions of the same parameters share one instance of this.
template <class Object, class... Parameters>
struct Call {
  void (Object::*function)(Parameters...);
  bool valuesWithRefusal;

  void operator()(CameraStack& stack, Given given, const Operation::Handler& handler) const {
    std::size_t next = 0;
    const auto parameter = [&]<class T>(std::type_identity<T>) -> T {
      if constexpr (kIsPhotoHandler<T>)
        return {};
      else if constexpr (kIsHandler<T>)
        return HandlerMaker<T>::make(handler, valuesWithRefusal);
      else
        return Argument<T>::from(next < given.size() ? given[next++] : Operation::Value());
    };
    // Braces read from left to right.
    std::tuple<std::remove_cvref_t<Parameters>...> arguments{
        parameter(std::type_identity<std::remove_cvref_t<Parameters>>())...};
    Object* const which = nullptr;
    std::apply([&](auto&... each) { (objectOf(stack, which).*function)(std::move(each)...); }, arguments);
  }
};

template <class... Parameters, std::size_t count>
std::vector<Operation::Parameter> parametersOf(const std::array<std::string_view, count>& names) {
  std::vector<Operation::Parameter> parameters;
  std::size_t next = 0;
  const auto add = [&]<class T>(std::type_identity<T>) {
    if constexpr (!kIsHandler<T>) parameters.push_back({names[next++], typename Argument<T>::Value{}});
  };
  (add(std::type_identity<std::remove_cvref_t<Parameters>>()), ...);
  return parameters;
}

// An operation that sends no row of the catalogue. names: of all parameters but the handlers.
template <class Object, class... Parameters, class... Names>
Operation operation(std::string_view name, void (Object::*function)(Parameters...), const Names&... names) {
  static_assert((!kIsHandler<std::remove_cvref_t<Parameters>> + ... + 0) == sizeof...(Names),
                "a name for each parameter but the handlers");
  const std::array<std::string_view, sizeof...(Names)> all{names...};
  return {name,
          parametersOf<Parameters...>(all),
          {},
          Operation::Done::answered,
          Call<Object, Parameters...>{function, false}};
}

// An operation that does nothing.
template <class Function, class... Names>
Operation nothing(std::string_view name, Function function, const Names&... names) {
  Operation made = operation(name, function, names...);
  made.done = Operation::Done::called;
  return made;
}

// An operation that sends this row. Its handler has a value for each field of the row's reply.
template <RowName row, class Object, class... Parameters, class... Names>
Operation operation(std::string_view name, void (Object::*function)(Parameters...), const Names&... names) {
  constexpr const Reply& kReply = kRow<row>.reply;
  static_assert((kValues<std::remove_cvref_t<Parameters>> + ... + 0) == kReply.fields.count(),
                "a value of the handler for each field of the row's reply");
  Operation made = operation(name, function, names...);
  for (const Field& field : kReply.fields) made.resultKeys.push_back(field.key);
  if (kReply.form == Reply::Form::none) made.done = Operation::Done::written;
  if (kRow<row>.registered == Registered::never) made.done = Operation::Done::called;
  made.call = Call<Object, Parameters...>{function, kReply.valuesWithRefusal};
  made.row = kRow<row>.registering;
  return made;
}

}  // namespace zel::binding
