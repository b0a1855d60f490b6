#include "facade/operation_call.h"

#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <functional>
#include <optional>
#include <utility>

#include "facade/camera_core.h"
#include "facade/captures.h"

namespace zel {
namespace {

using Done = std::function<void(Result<OperationReply>)>;

constexpr double kWriteLook = 0.01;  // seconds between two looks at what still waits to be written

OperationReply notConnected() { return {zelOSStatusError(kZELErrorNotConnected), {}}; }

// Photos and uploads wait in the lines of photo() and upload().
std::string_view lineOf(const Operation& operation) {
  for (const std::string_view shutter :
       {"registerMsgCmdShutter", "registerMsgCmdShutterExtra", "registerMsgCmdShutterAEB"}) {
    if (operation.row == shutter) return kCaptureLine;
  }
  if (operation.name == "sendFileWithType") return kUploadLine;
  return operation.row.empty() ? operation.name : operation.row;
}

// Waits until everything is written. What was queued for a session that has ended is not written any more.
void waitForWriting(const std::weak_ptr<CameraCore>& weak, const Done& done) {
  const auto core = weak.lock();
  if (!core) return;
  std::optional<OperationReply> reply;
  core->withStack([&](CameraStack& stack) {
    if (stack.accessory().linkStatus() != LinkStatus::flowing)
      reply = notConnected();
    else if (stack.statistics().bytesToWrite == 0)
      reply.emplace();
  });
  if (reply) return done(*std::move(reply));
  core->deadlines()->add(core->deadlines()->now() + kWriteLook, [weak, done] { waitForWriting(weak, done); });
}

}  // namespace

Pending<OperationReply> callOperation(const std::shared_ptr<CameraCore>& core, const Operation& operation,
                                      const std::vector<Operation::Value>& arguments, const RequestOptions& request) {
  return core->request<OperationReply>(
      {operation.name, lineOf(operation)}, request,
      [weak = std::weak_ptr(core), operation, arguments](CameraStack& stack, const Done& done) {
        Operation::Handler handler;
        if (operation.done == Operation::Done::answered) {
          handler = [done](const std::optional<ZELError>& error, const std::vector<Operation::Value>& values) {
            done(OperationReply{error, values});
          };
        }
        operation.call(stack, arguments, std::move(handler));
        if (operation.done == Operation::Done::called) return done(OperationReply{});
        if (operation.done == Operation::Done::written) waitForWriting(weak, done);
      });
}

}  // namespace zel
