#pragma once

#include <ZELTarkaSDK/ZELError.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "apps/zelcam/host/printable.h"

namespace zel::app {

// Everything that is printed here passes printable() first: a terminal must not obey what a camera calls itself.

// An object as one line. Text that is not UTF-8 is shown with replacement characters.
std::string jsonLine(const nlohmann::ordered_json& object);

// One JSON object on a line of standard output.
void printJson(const nlohmann::ordered_json& object);

// From now on standard output carries something else: what would be printed there goes to standard error.
void leaveStandardOutput();

// An error as an object with its domain and code, and no error as null.
nlohmann::ordered_json errorJson(const std::optional<ZELError>& error);

// A line for people on standard output.
void printLine(const std::string& line);

// A whole text of our own for people, as it is, on standard output.
void printText(const std::string& text);

// A line for people on standard error, as progress and warnings are, and in the log where one is kept.
void say(const std::string& line);

// Keeps why the command fails, for failureJson(); the first one counts. error: what the camera's handler got, where it
// got one.
void rememberFailure(const std::string& message, const std::optional<ZELError>& error = std::nullopt);

// The same, and says so behind the program's name.
void sayFailure(const std::string& message, const std::optional<ZELError>& error = std::nullopt);

// Says why a command ends with that exit status, which is returned.
int complain(int status, std::string_view command, std::string_view complaint);

// Why the command fails, as an object with code, domain and message. The error's own code and domain where the camera
// gave one; else the exit status, and "zelcam".
nlohmann::ordered_json failureJson(int status);

// {"error": failureJson()} on a line of standard output, once in a run, and not where failureJson() was told otherwise.
void printFailure(int status);

// Why standard output could not be written, as the error's number; 0 where it could. A reader that has gone, as `head`
// does, ends the output and is no fault.
int standardOutputFault();

// Writes over the line of progress on standard error, which a line for people then ends.
void showProgress(const std::string& line);

// The local time of day with milliseconds, "12:34:56.789".
std::string timeOfDay();

}  // namespace zel::app
