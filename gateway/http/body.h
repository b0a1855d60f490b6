#pragma once

#include <microhttpd.h>

#include <memory>
#include <string_view>

#include "gateway/http/exchange.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// Queues the answer on its connection. False: the connection must be closed.
bool queueResponse(MHD_Connection& connection, const std::shared_ptr<Exchange>& exchange, Response response);

}  // namespace zel::gateway
