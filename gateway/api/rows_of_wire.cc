#include "gateway/api/rows_of_wire.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "gateway/json/printable.h"

namespace zel::gateway {
namespace {

constexpr char kWireProtocol[] = "zel-wire";

Response wireRefusal(const SharedLines& lines, const std::string& camera) {
  const auto all = lines.cameras();
  const auto found = std::ranges::find(all, camera, &SharedLines::Camera::camera);
  if (found == all.end()) return problem(404, fmt::format("there is no camera {}", printable(camera)));
  return problem(503, fmt::format("the camera {} is absent", printable(camera)));
}

bool isPresent(const SharedLines& lines, const std::string& camera) {
  const auto all = lines.cameras();
  return std::ranges::any_of(all, [&](const auto& one) { return one.camera == camera && one.isPresent(); });
}

}  // namespace

std::vector<Row> wireRows(SharedLines& lines) {
  Row row;
  row.method = "GET";
  row.path = "/api/v1/cameras/{serial}/wire";
  row.isLocal = true;
  row.handle = [&lines](const RowCall& call, const Respond& respond) {
    const std::string& camera = call.parameter("serial");
    if (call.request.header("upgrade") != kWireProtocol) {
      Response refusal = problem(426, "this address is for hosts that go on with zel-wire");
      refusal.headers.emplace_back("Upgrade", kWireProtocol);
      return respond(std::move(refusal));
    }
    if (!isPresent(lines, camera)) return respond(wireRefusal(lines, camera));
    Response response{.status = 101, .type = ""};
    // A host sends nothing before it has the answer; one that does is closed.
    response.content =
        UpgradeContent{kWireProtocol, [&lines, camera](platform::UniqueDescriptor socket, const std::string& read) {
                         if (read.empty()) lines.admit(camera, std::move(socket));
                       }};
    respond(std::move(response));
  };
  return {row};
}

}  // namespace zel::gateway
