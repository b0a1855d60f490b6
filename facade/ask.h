#pragma once

#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "facade/camera_core.h"

// Makes a request out of an operation of the command layer, whose types it is checked by.

namespace zel {
namespace asking {

inline ZELCameraUCD& objectOf(CameraStack& stack, ZELCameraUCD*) { return stack.ucd(); }
inline ZELCameraManager& objectOf(CameraStack& stack, ZELCameraManager*) { return stack.manager(); }

// An operation's parameter made of a request's argument.
template <class Parameter, class Argument>
decltype(auto) as(const Argument& argument) {
  if constexpr (std::is_same_v<Parameter, ZELCameraUCD::Gps>)
    return ZELMediaGps::initWithLatitude(argument.latitude, argument.longitude, argument.altitude);
  else if constexpr (std::is_same_v<Parameter, ZELCameraUCD::Gyro>)
    return ZELMediaGyro::initWithGyroData(argument);
  else if constexpr (std::is_same_v<Parameter, ZELCameraUCD::Orientation>)
    return ZELMediaOrientation::initWithX(argument.x, argument.y, argument.z, argument.w);
  else
    return (argument);
}

// The result that a reply's values make: one value as it is, several as a structure's members, none as nothing.
template <class T, class... Values>
Result<T> resultOf(const Values&... values) {
  if constexpr (std::is_void_v<T>)
    return {};
  else
    return T{values...};
}

template <class T, class... Values>
RebackBlock<Values...> handler(std::type_identity<RebackBlock<Values...>>, std::string_view name,
                               std::function<void(Result<T>)> done) {
  static_assert(!std::is_void_v<T> || sizeof...(Values) == 0, "a result for each reply that has values");
  return [name, done = std::move(done)](const std::optional<ZELError>& error, Values... values) {
    done(error ? Result<T>(errorOf(name, *error)) : resultOf<T>(values...));
  };
}

}  // namespace asking

// Asks the camera. Its handler is the operation's last parameter.
template <class T, class Object, class... Parameters, class... Arguments>
Pending<T> ask(const std::shared_ptr<CameraCore>& core, const RequestKind& kind, const RequestOptions& options,
               void (Object::*function)(Parameters...), const Arguments&... arguments) {
  static_assert(sizeof...(Parameters) == sizeof...(Arguments) + 1, "an argument for each parameter but the handler");
  using All = std::tuple<std::remove_cvref_t<Parameters>...>;
  using Handler = std::tuple_element_t<sizeof...(Arguments), All>;
  if (!core) return nowhere<T>();
  return core->request<T>(kind, options,
                          [function, name = kind.name, kept = std::tuple<Arguments...>(arguments...)](
                              CameraStack& stack, std::function<void(Result<T>)> done) {
                            Object* const which = nullptr;
                            auto handler = asking::handler<T>(std::type_identity<Handler>(), name, std::move(done));
                            [&]<std::size_t... at>(std::index_sequence<at...>) {
                              (asking::objectOf(stack, which).*function)(
                                  asking::as<std::tuple_element_t<at, All>>(std::get<at>(kept))..., std::move(handler));
                            }
                            (std::index_sequence_for<Arguments...>());
                          });
}

// Tells the camera what it does not answer.
//
// Errors: `lost` without a link, since it would be dropped.
template <class... Parameters, class... Arguments>
Pending<void> tell(const std::shared_ptr<CameraCore>& core, const RequestKind& kind, const RequestOptions& options,
                   void (ZELCameraUCD::*function)(Parameters...), const Arguments&... arguments) {
  if (!core) return nowhere<void>();
  return core->request<void>(kind, options,
                             [function, name = kind.name, kept = std::tuple<Arguments...>(arguments...)](
                                 CameraStack& stack, const std::function<void(Result<void>)>& done) {
                               if (stack.accessory().linkStatus() < LinkStatus::flowing) {
                                 return done(errorOf(name, zelOSStatusError(kZELErrorNotConnected)));
                               }
                               std::apply([&](const auto&... each) { (stack.ucd().*function)(each...); }, kept);
                               done({});
                             });
}

}  // namespace zel
