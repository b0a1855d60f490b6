#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "gateway/api/row.h"

namespace zel::gateway {

// What a command answers: a status as HTTP has them, and an object.
using AnswerCommand = std::function<void(int status, const nlohmann::ordered_json& body)>;

// A command of a camera by its serial number; the body is an object.
//
// Thread: the client's; it must not wait, and answers on any thread.
using MqttCommand = std::function<void(const std::string& serialNumber, nlohmann::json body, const AnswerCommand&)>;
using MqttCommands = std::map<std::string, MqttCommand, std::less<>>;

// The rows of the gateway's table that do something at a camera, POST /api/v1/cameras/{serial}/NAME, each as a command
// of that name. So a command takes, does and answers what its row does.
MqttCommands commandsOf(const std::vector<Row>& rows);

// Runs what a message asks for. answer: the content for the answer's topic, {"id", "status", "body"}; the id is that of
// the message. A message that is no object of JSON, and a command that there is not, are answered as well.
void runCommand(const MqttCommands& commands, const std::string& serialNumber, const std::string& name,
                const std::string& content, std::function<void(std::string)> answer);

}  // namespace zel::gateway
