#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

class CameraStack;

// An operation of ZELCameraUCD or ZELCameraManager, for hosts that call it by its name: command lines, scripts,
// servers.
struct Operation {
  // An argument or a value of a reply. Absent: text or bytes that are not there.
  using Value = std::optional<ZELMessageFields::Value>;

  struct Parameter {
    std::string_view name;
    ZELMessageFields::Value type;  // a value of the type that it takes
  };

  // When a call is done.
  enum class Done {
    answered,  // the handler is called
    written,   // there is no reply: the bytes are on their way
    called,    // the operation does nothing
  };

  // How a call ended. values: of the reply, one for each result key; none where a refusal carries nothing.
  using Handler = std::function<void(const std::optional<ZELError>& error, const std::vector<Value>& values)>;

  std::string_view name;                     // its C++ name
  std::vector<Parameter> parameters;         // all but the handlers, in its order
  std::vector<std::string_view> resultKeys;  // of the reply's values, in the handler's order
  Done done = Done::answered;

  // Calls it. An argument that is missing or of another type counts as 0, text and bytes as absent. A capture's picture
  // goes nowhere. handler: may be empty.
  //
  // Thread: any thread; the handler runs where the operation's own would.
  std::function<void(CameraStack& stack, std::span<const Value> arguments, Handler handler)> call;

  std::string_view row = {};  // of the protocol's catalogue that it sends; empty: none
};

// What an operation gave that was called by its name.
struct OperationReply {
  std::optional<ZELError> error;         // of its handler
  std::vector<Operation::Value> values;  // of the reply, see Operation::Handler
};

// Every operation, by class and in the order of its header.
// Thread: any thread.
ZEL_EXPORT std::span<const Operation> operations();

// The operation of that name, null where there is none.
// Thread: any thread.
ZEL_EXPORT const Operation* findOperation(std::string_view name);

}  // namespace zel
