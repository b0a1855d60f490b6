#include "gateway/api/rows_of_viewing.h"

#include <ZELTarkaSDK/WireConstants.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "gateway/api/call_problem.h"
#include "gateway/api/lens_json.h"

namespace zel::gateway {

std::vector<Row> viewingRows(Cameras& cameras, std::chrono::milliseconds timeLimit) {
  const auto lens = [&cameras, timeLimit](const RowCall& call, const Respond& respond) {
    auto found = reachable(cameras, call.parameter("serial"));
    if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
    const auto held = std::get<std::shared_ptr<HeldCamera>>(found);
    held->camera()
        .lensOffset(kMediaOffsetOfCamera, 0, {.timeLimit = timeLimit})
        .then([held, respond, timeLimit](const Result<std::optional<std::string>>& offset) {
          const double seconds = std::chrono::duration<double>(timeLimit).count();
          respond(offset ? jsonResponse(lensJson(offset->value_or("")))
                         : cameraProblem("the lens offset", offset.error(), seconds));
        });
  };
  const auto time = [](const RowCall&, const Respond& respond) {
    using std::chrono::microseconds;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    respond(jsonResponse({{"now", std::chrono::duration_cast<microseconds>(now).count()}}));
  };
  return {
      {"GET",
       "/api/v1/cameras/{serial}/lens",
       "lens",
       "The camera's lenses, as a renderer needs them",
       {{200, "application/json", "Lens", "in the words of the lens offset's page"}},
       lens},
      {"GET",
       "/api/v1/time",
       "time",
       "The server's time",
       {{200, "application/json", "Time", "microseconds since 1970"}},
       time},
  };
}

}  // namespace zel::gateway
