#pragma once

#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "apps/zelcam/hex.h"
#include "apps/zelcam/number_text.h"
#include "apps/zelcam/operation.h"

// Makes a row of the operations table from a member function. The parameters' types determine which arguments are
// typed, how they are parsed, and how a reply is printed.
namespace zel::app::binding {

inline constexpr char kExtra[] = "--extra";

// -- Parameters

// The source of a parameter: an argument, an option, or the handler.
enum class Source { argument, gps, gyro, orientation, handler, photoHandler };

template <class T>
struct IsHandler : std::false_type {};
template <class... Values>
struct IsHandler<RebackBlock<Values...>> : std::true_type {};
template <>
struct IsHandler<RebackDic> : std::true_type {};

template <class T>
consteval Source sourceOf() {
  if constexpr (std::same_as<T, ZELPhotoBlock> || std::same_as<T, ZELPhotoSeriesBlock>) return Source::photoHandler;
  if constexpr (IsHandler<T>::value) return Source::handler;
  if constexpr (std::same_as<T, ZELGpsData> || std::same_as<T, ZELCameraUCD::Gps>) return Source::gps;
  if constexpr (std::same_as<T, ZELGyroData> || std::same_as<T, ZELCameraUCD::Gyro>) return Source::gyro;
  if constexpr (std::same_as<T, ZELOrientationData> || std::same_as<T, ZELCameraUCD::Orientation>)
    return Source::orientation;
  return Source::argument;
}

// -- Arguments: what each type is called and how it is read.

template <class T>
struct Reader;

template <std::integral T>
struct Reader<T> {
  static std::string type() { return fmt::format("{}{}", std::is_signed_v<T> ? 's' : 'u', 8 * sizeof(T)); }
  static std::optional<T> read(const std::string& text) { return numberIn<T>(text); }
};

template <>
struct Reader<std::optional<std::string>> {
  static std::string type() { return "text"; }
  static std::optional<std::optional<std::string>> read(const std::string& text) { return std::optional(text); }
};

template <>
struct Reader<ZELData> {
  static std::string type() { return "hex"; }
  static std::optional<ZELData> read(const std::string& text) {
    auto bytes = bytesIn(text);
    return bytes ? std::optional(ZELData(std::move(*bytes))) : std::nullopt;
  }
};

template <>
struct Reader<std::optional<ZELData>> {
  static std::string type() { return "hex"; }
  static std::optional<std::optional<ZELData>> read(const std::string& text) {
    auto data = Reader<ZELData>::read(text);
    return data ? std::optional(std::optional(std::move(*data))) : std::nullopt;
  }
};

template <WireRecord R>
requires(!std::integral<R>) struct Reader<R> {
  static std::string type() { return fmt::format("hex of {} bytes", sizeof(R)); }
  static std::optional<R> read(const std::string& text) { return recordIn<R>(text); }
};

// -- Results

inline nlohmann::ordered_json shown(const std::optional<std::string>& text) {
  return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json();
}
inline nlohmann::ordered_json shown(const std::optional<ZELData>& data) {
  return data ? nlohmann::ordered_json(hexOf(data->bytes())) : nlohmann::ordered_json();
}
template <std::integral T>
nlohmann::ordered_json shown(const std::optional<T>& number) {
  return number ? nlohmann::ordered_json(*number) : nlohmann::ordered_json();
}
template <std::integral T>
nlohmann::ordered_json shown(T number) {
  return number;
}
template <WireRecord R>
requires(!std::integral<R>) nlohmann::ordered_json shown(const R& record) { return recordHex(record); }

// The handler that prints a reply's values under the operation's keys. A refusal prints values only for operations
// whose refusals have some.
template <class Block>
struct HandlerMaker;
template <class... Values>
struct HandlerMaker<RebackBlock<Values...>> {
  static RebackBlock<Values...> make(const Operation& operation, CallDone done) {
    return [&operation, done = std::move(done)](const std::optional<ZELError>& error, Values... values) {
      nlohmann::ordered_json result = nlohmann::ordered_json::object();
      if (!error || operation.valueWithError) {
        std::size_t key = 0;
        ((result[std::string(operation.resultKeys[key++])] = shown(values)), ...);
      }
      done(error, std::move(result));
    };
  }
};

// A handler of a reply dictionary that prints only the error.
template <>
struct HandlerMaker<RebackDic> {
  static RebackDic make(const Operation&, CallDone done) {
    return [done = std::move(done)](const std::optional<ZELMessageFields>& reply) {
      done(reply ? reply->get<ZELError>(key::nsError) : std::nullopt, nlohmann::ordered_json::object());
    };
  }
};

// -- The call

inline ZELCameraUCD& object(CameraStack& stack, ZELCameraUCD*) { return stack.ucd(); }
inline ZELCameraManager& object(CameraStack& stack, ZELCameraManager*) { return stack.manager(); }

// Parses the arguments in order; stores the error of the first invalid one.
class ArgumentReader {
 public:
  ArgumentReader(const Operation& operation, const CallInput& input, std::string& error)
      : operation_(operation), input_(input), error_(error) {}

  template <class T>
  T next() {
    constexpr Source source = sourceOf<T>();
    if constexpr (source == Source::handler || source == Source::photoHandler) return {};
    if constexpr (source == Source::gps) return sensor<T>(input_.sensors.gps);
    if constexpr (source == Source::gyro) return sensor<T>(input_.sensors.gyro);
    if constexpr (source == Source::orientation) return sensor<T>(input_.sensors.orientation);
    if constexpr (std::same_as<T, std::optional<ZELData>>) {
      if (std::ranges::find(operation_.sensors, kExtra) != operation_.sensors.end()) return input_.sensors.extra;
    }
    if constexpr (source == Source::argument) return argument<T>();
  }

 private:
  template <class T>
  static T sensor(const std::shared_ptr<const ZELMediaGps>& gps) {
    if constexpr (std::same_as<T, ZELGpsData>) return gps->getGpsData();
    if constexpr (!std::same_as<T, ZELGpsData>) return gps;
  }
  template <class T>
  static T sensor(const std::shared_ptr<const ZELMediaGyro>& gyro) {
    if constexpr (std::same_as<T, ZELGyroData>) return gyro->getGyroData();
    if constexpr (!std::same_as<T, ZELGyroData>) return gyro;
  }
  template <class T>
  static T sensor(const std::shared_ptr<const ZELMediaOrientation>& orientation) {
    if constexpr (std::same_as<T, ZELOrientationData>) return orientation->getOrientationData();
    if constexpr (!std::same_as<T, ZELOrientationData>) return orientation;
  }

  template <class T>
  T argument() {
    const std::size_t index = next_++;
    const std::string& text = input_.arguments[index];
    const auto value = Reader<T>::read(text);
    if (!value && error_.empty()) {
      error_ = fmt::format("{} takes {}, not \"{}\"", operation_.name, operation_.arguments[index], text);
    }
    return value.value_or(T{});
  }

  const Operation& operation_;
  const CallInput& input_;
  std::string& error_;
  std::size_t next_ = 0;
};

// All member functions with the same parameters share one instantiation.
template <class Object, class... Parameters>
struct Binding {
  using Function = void (Object::*)(Parameters...);
  using Arguments = std::tuple<std::remove_cvref_t<Parameters>...>;

  // One row. names: of all parameters but the handlers, in their order; the one called jsonData comes from --extra.
  static Operation row(std::string_view name, Function function, std::initializer_list<std::string_view> names,
                       std::initializer_list<std::string_view> resultKeys, DoneWhen doneWhen) {
    Operation operation{name, {}, {}, resultKeys, doneWhen, false, nullptr};
    operation.prepare = [function](const Operation& called, const CallInput& input, std::string& error) {
      return prepare(function, called, input, error);
    };
    auto next = names.begin();
    (describe<std::remove_cvref_t<Parameters>>(operation, next), ...);
    return operation;
  }

 private:
  template <class T>
  static void describe(Operation& operation, const std::string_view*& next) {
    constexpr Source source = sourceOf<T>();
    if constexpr (source == Source::handler || source == Source::photoHandler) return;
    const std::string_view name = *next++;
    if constexpr (source == Source::gps) operation.sensors.push_back("--gps");
    if constexpr (source == Source::gyro) operation.sensors.push_back("--gyro");
    if constexpr (source == Source::orientation) operation.sensors.push_back("--orientation");
    if constexpr (source == Source::argument) {
      if (name == "jsonData") {
        operation.sensors.push_back(kExtra);
      } else {
        operation.arguments.push_back(fmt::format("{}:{}", name, Reader<T>::type()));
      }
    }
  }

  static ReadyCall prepare(Function function, const Operation& operation, const CallInput& input, std::string& error) {
    ArgumentReader reader(operation, input, error);
    // Braces read from left to right.
    Arguments arguments{reader.template next<std::remove_cvref_t<Parameters>>()...};
    if (!error.empty()) return nullptr;
    return [function, &operation, arguments = std::move(arguments)](CameraStack& stack, const CallDone& done) mutable {
      call(function, stack, operation, done, arguments, std::index_sequence_for<Parameters...>());
    };
  }

  template <std::size_t... index>
  static void call(Function function, CameraStack& stack, const Operation& operation, const CallDone& done,
                   Arguments& arguments, std::index_sequence<index...>) {
    (setHandler(std::get<index>(arguments), operation, done), ...);
    Object* const unused = nullptr;
    (object(stack, unused).*function)(std::get<index>(arguments)...);
  }

  template <class T>
  static void setHandler([[maybe_unused]] T& parameter, [[maybe_unused]] const Operation& operation,
                         [[maybe_unused]] const CallDone& done) {
    if constexpr (sourceOf<T>() == Source::handler) parameter = HandlerMaker<T>::make(operation, done);
  }
};

// The rows of each kind of operations.

using Names = std::initializer_list<std::string_view>;

template <class Object, class... Parameters>
Operation answered(std::string_view name, void (Object::*function)(Parameters...), Names names = {},
                   Names resultKeys = {}) {
  return Binding<Object, Parameters...>::row(name, function, names, resultKeys, DoneWhen::answered);
}

// The camera's reply has values even if it is a refusal.
template <class Object, class... Parameters>
Operation answeredEvenWithError(std::string_view name, void (Object::*function)(Parameters...), Names names,
                                Names resultKeys) {
  Operation operation = answered(name, function, names, resultKeys);
  operation.valueWithError = true;
  return operation;
}

template <class Object, class... Parameters>
Operation written(std::string_view name, void (Object::*function)(Parameters...), Names names) {
  return Binding<Object, Parameters...>::row(name, function, names, {}, DoneWhen::written);
}

template <class Object, class... Parameters>
Operation doesNothing(std::string_view name, void (Object::*function)(Parameters...), Names names) {
  return Binding<Object, Parameters...>::row(name, function, names, {}, DoneWhen::called);
}

}  // namespace zel::app::binding
