#pragma once

#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/Pending.h>

#include <memory>
#include <vector>

namespace zel {

class CameraCore;

// Calls of a camera object by an operation's name: see Camera.h.
Pending<OperationReply> callOperation(const std::shared_ptr<CameraCore>& core, const Operation& operation,
                                      const std::vector<Operation::Value>& arguments, const RequestOptions& request);

}  // namespace zel
