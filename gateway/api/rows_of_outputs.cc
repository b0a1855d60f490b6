#include "gateway/api/rows_of_outputs.h"

#include <string>
#include <utility>
#include <variant>

#include "gateway/api/call_problem.h"
#include "gateway/json/number_text.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

constexpr char kTooMany[] = "too many outputs are beginning and ending; ask again";

// An output needs no answer of the camera, so that its time limit is none.
Response outputProblem(const CameraError& error) { return cameraProblem("output", error, 0); }

void beginOutput(OutputDesk& desk, const RowCall& call, const Respond& respond) {
  const auto request = outputRequestIn(call.body);
  if (!request) return respond(problem(422, request.error().message));
  const bool isTaken = desk.post(call.parameter("serial"), [request = *request, respond](CameraOutputs& outputs) {
    const auto begun = outputs.begin(request);
    respond(begun ? jsonResponse(jsonOf(*begun), 201) : outputProblem(begun.error()));
  });
  if (!isTaken) respond(problem(503, kTooMany));
}

void endOutput(OutputDesk& desk, const RowCall& call, const Respond& respond) {
  const auto id = numberIn<int>(call.parameter("id"));
  if (!id) return respond(problem(404, "there is no such output"));
  const bool isTaken = desk.post(call.parameter("serial"), [id = *id, respond](CameraOutputs& outputs) {
    const auto ended = outputs.end(id);
    respond(ended ? jsonResponse(jsonOf(*ended)) : problem(404, ended.error().message));
  });
  if (!isTaken) respond(problem(503, kTooMany));
}

}  // namespace

std::vector<Row> outputRows(const Cameras& cameras, OutputDesk& desk) {
  const auto ofKnown = [&cameras](auto handle) {
    return [&cameras, handle](const RowCall& call, const Respond& respond) {
      auto found = known(cameras, call.parameter("serial"));
      if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
      handle(call, respond);
    };
  };
  const auto list = [&desk](const RowCall& call, const Respond& respond) {
    ordered_json outputs = ordered_json::array();
    for (const OutputStatus& one : desk.list(call.parameter("serial"))) outputs.push_back(jsonOf(one));
    respond(jsonResponse({{"outputs", outputs}}));
  };
  const auto begin = [&desk](const RowCall& call, const Respond& respond) { beginOutput(desk, call, respond); };
  const auto end = [&desk](const RowCall& call, const Respond& respond) { endOutput(desk, call, respond); };
  constexpr char kPath[] = "/api/v1/cameras/{serial}/outputs";
  return {
      {"GET",
       kPath,
       "listOutputs",
       "Files and servers that the camera's stream is written to",
       {{200, "application/json", "Outputs", "the outputs in the order in which they began"}},
       ofKnown(list)},
      {"POST",
       kPath,
       "beginOutput",
       "Begins an output: a file of the media folder, or an RTMP or SRT server",
       {{201, "application/json", "Output", "the output as it begins"}},
       ofKnown(begin),
       "OutputRequest"},
      {"DELETE",
       std::string(kPath) + "/{id}",
       "endOutput",
       "Ends an output and forgets it",
       {{200, "application/json", "Output", "what became of it"}},
       ofKnown(end)},
  };
}

}  // namespace zel::gateway
