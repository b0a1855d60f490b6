#include "gateway/api/rows_of_cameras.h"

#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "gateway/api/call_problem.h"
#include "gateway/api/fields.h"
#include "gateway/json/failure.h"
#include "gateway/json/info_json.h"
#include "gateway/json/operation_text.h"
#include "gateway/json/printable.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;
using Held = std::shared_ptr<HeldCamera>;

// What every row of a camera needs.
struct CameraRowContext {
  Cameras& cameras;
  std::chrono::milliseconds timeLimit;

  double seconds() const { return std::chrono::duration<double>(timeLimit).count(); }
  RequestOptions limits() const { return {.timeLimit = timeLimit}; }
};

Response listed(const Cameras& cameras) {
  ordered_json list = ordered_json::array();
  for (const Held& one : cameras.all()) list.push_back(summaryJson(one->summary()));
  return jsonResponse({{"cameras", list}});
}

// -- What a camera is

// As zelcam shows it: what was not answered is null, and the first fault stands beside it.
Response infoOf(HeldCamera& held, const InfoAnswers& answers, double seconds) {
  std::optional<Failure> first;
  ordered_json object = infoJson(held.camera(), answers, [&](const std::string& key, const CameraError& error) {
    if (!first) first = failureOf(key, error, seconds);
  });
  if (first && first->kind == Failure::Kind::lost) {
    return problem(503, first->message, {{"domain", first->error->domain}, {"code", first->error->code}});
  }
  if (first) object["error"] = failureJson(*first);
  return jsonResponse(object);
}

void showInfo(const CameraRowContext& context, const RowCall& call, const Respond& respond) {
  auto found = reachable(context.cameras, call.parameter("serial"));
  if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
  const Held held = std::get<Held>(found);
  askForInfo(held->camera(), context.limits(), [held, respond, context](const InfoAnswers& answers) {
    respond(infoOf(*held, answers, context.seconds()));
  });
}

// -- Calls

// An argument as people would type it: numbers are taken as well.
std::optional<std::string> argumentText(const nlohmann::json& argument) {
  if (argument.is_string()) return argument.get<std::string>();
  if (argument.is_number_integer()) return argument.dump();
  return std::nullopt;
}

std::vector<std::string> argumentTexts(Fields& fields) {
  std::vector<std::string> texts;
  const nlohmann::json* const given = fields.find("args");
  if (given == nullptr) return texts;
  if (!given->is_array()) fields.complain("\"args\" must be a list");
  for (const auto& one : *given) {
    auto text = argumentText(one);
    if (!text) fields.complain("each of \"args\" must be a text or a whole number");
    texts.push_back(std::move(text).value_or(""));
  }
  return texts;
}

struct OperationCall {
  const Operation* operation = nullptr;
  std::vector<Operation::Value> arguments;
};

std::optional<OperationCall> operationCallIn(Fields& fields) {
  const std::string name = fields.text("operation", true);
  const std::vector<std::string> texts = argumentTexts(fields);
  if (fields.fault()) return std::nullopt;
  const Operation* const operation = findOperation(name);
  if (operation == nullptr) {
    fields.complain(fmt::format("there is no operation {}", printable(name)));
    return std::nullopt;
  }
  const std::vector<std::string> taken = argumentsOf(*operation);
  if (texts.size() != taken.size()) {
    const std::string takes = taken.empty() ? "no arguments" : fmt::format("{}", fmt::join(taken, " "));
    fields.complain(fmt::format("{} takes {}; {} were given", name, takes, texts.size()));
    return std::nullopt;
  }
  std::string fault;
  auto arguments = argumentsIn(*operation, texts, {}, fault);
  if (!arguments) fields.complain(fault);
  return arguments ? std::optional(OperationCall{operation, *std::move(arguments)}) : std::nullopt;
}

Response callAnswer(const Operation& operation, const Result<OperationReply>& reply, double seconds) {
  if (!reply) return cameraProblem(operation.name, reply.error(), seconds);
  if (reply->error) return cameraProblem(operation.name, *reply->error);
  return jsonResponse(callJson(operation, *reply));
}

void makeCall(const CameraRowContext& context, const RowCall& call, const Respond& respond) {
  Fields fields(call.body, {"operation", "args"});
  const auto ready = operationCallIn(fields);
  if (!ready) return respond(problem(422, *fields.fault()));
  auto found = reachable(context.cameras, call.parameter("serial"));
  if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
  const Held held = std::get<Held>(found);
  held->camera()
      .call(*ready->operation, ready->arguments, context.limits())
      .then([held, respond, context, operation = ready->operation](const Result<OperationReply>& reply) {
        respond(callAnswer(*operation, reply, context.seconds()));
      });
}

// -- Recordings

ordered_json storedJson(const StoredFile& file) {
  return {{"record", "stop"},
          {"fileName", file.name ? ordered_json(*file.name) : ordered_json()},
          {"fileTime", file.time},
          {"fileSize", file.sizeBytes},
          {std::string(key::fileSize), file.sizeBytes}};  // the interface's spelling of the same
}

void record(const CameraRowContext& context, const RowCall& call, const Respond& respond) {
  Fields fields(call.body, {"action"});
  const std::string action = fields.text("action", true);
  if (action != "start" && action != "stop" && action != "cancel") {
    fields.complain("\"action\" must be start, stop or cancel");
  }
  if (fields.fault()) return respond(problem(422, *fields.fault()));
  auto found = reachable(context.cameras, call.parameter("serial"));
  if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
  const Held held = std::get<Held>(found);
  const std::string what = "record " + action;
  if (action == "stop") {
    held->camera().stopRecording(context.limits()).then([held, respond, context, what](const Result<StoredFile>& file) {
      respond(file ? jsonResponse(storedJson(*file)) : cameraProblem(what, file.error(), context.seconds()));
    });
    return;
  }
  auto asked = action == "start" ? held->camera().startRecording({}, {}, {}, context.limits())
                                 : held->camera().cancelRecording(context.limits());
  asked.then([held, respond, context, what, action](const Result<void>& done) {
    respond(done ? jsonResponse({{"record", action}}) : cameraProblem(what, done.error(), context.seconds()));
  });
}

using CameraRowHandler = void (*)(const CameraRowContext&, const RowCall&, const Respond&);

}  // namespace

std::vector<Row> cameraRows(Cameras& cameras, std::chrono::milliseconds timeLimit) {
  const CameraRowContext context{cameras, timeLimit};
  const auto with = [context](CameraRowHandler handler) {
    return [context, handler](const RowCall& call, const Respond& respond) { handler(context, call, respond); };
  };
  return {
      {"GET",
       "/api/v1/cameras",
       "listCameras",
       "All cameras, attached or not",
       {{200, "application/json", "Cameras", "the cameras in the order in which they were first attached"}},
       [&cameras](const RowCall&, const Respond& respond) { respond(listed(cameras)); }},
      {"GET",
       "/api/v1/cameras/{serial}",
       "cameraInfo",
       "Who the camera is and how it is",
       {{200, "application/json", "Info", "what zelcam --json info prints"}},
       with(showInfo)},
      {"POST",
       "/api/v1/cameras/{serial}/call",
       "call",
       "Any operation of the camera",
       {{200, "application/json", "Reply", "what zelcam --json call prints"}},
       with(makeCall),
       "Call"},
      {"POST",
       "/api/v1/cameras/{serial}/record",
       "record",
       "Starts, stops or cancels a recording on the camera",
       {{200, "application/json", "Recording", "what zelcam --json record prints"}},
       with(record),
       "Record"},
  };
}

}  // namespace zel::gateway
