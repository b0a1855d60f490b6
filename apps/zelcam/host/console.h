#pragma once

#include <ZELTarkaSDK/ZELError.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "gateway/json/json_line.h"
#include "gateway/json/printable.h"

namespace zel::app {

using gateway::errorJson;
using gateway::jsonLine;
using gateway::printable;
using gateway::timeOfDay;

// Everything printed here passes through printable(), so that text from a camera cannot control a terminal.

// One JSON object on a line of standard output.
void printJson(const nlohmann::ordered_json& object);

// What a command has done: the object where JSON is asked for, else the line. Returns kDone.
int tellDone(bool asJson, const nlohmann::ordered_json& object, const std::string& line);

// From now on standard output carries the stream; other output goes to standard error.
void leaveStandardOutput();

// A line for people on standard output.
void printLine(const std::string& line);

// A text of our own for people, unchanged, on standard output.
void printText(const std::string& text);

// A line for people on standard error, such as progress and warnings, and in the log, if any.
void say(const std::string& line);

// Stores why the command fails, for failureJson(); the first call counts. error: that of the camera's handler, if any.
void rememberFailure(const std::string& message, const std::optional<ZELError>& error = std::nullopt);

// The same, and prints it after the program's name.
void sayFailure(const std::string& message, const std::optional<ZELError>& error = std::nullopt);

// Prints why a command ends with that exit status, and returns it.
int complain(int status, std::string_view command, std::string_view complaint);

// Why the command fails, as an object with code, domain and message: code and domain of the camera's error if any, else
// the exit status and "zelcam".
nlohmann::ordered_json failureJson(int status);

// Prints {"error": failureJson()} as a line of standard output, at most once in a run, and not if failureJson() was
// called before.
void printFailure(int status);

// errno of a failed write to standard output; 0 for none. A reader that closes the pipe, as `head` does, ends the
// output and is not an error.
int standardOutputFault();

// Overwrites the progress line on standard error; the next message for people ends it.
void showProgress(const std::string& line);

}  // namespace zel::app
