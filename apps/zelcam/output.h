#pragma once

#include <ZELTarkaSDK/ZELError.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace zel::app {

// One JSON object on a line of standard output. Text that is not UTF-8 is shown with replacement characters.
void printJson(const nlohmann::ordered_json& object);

// An error as an object with its domain and code, and no error as null.
nlohmann::ordered_json errorJson(const std::optional<ZELError>& error);

// Text from outside with its control characters replaced: a terminal must not obey what a camera calls itself.
std::string printable(std::string text);

// A line for people on standard output.
void printLine(const std::string& line);

// A line for people on standard error, as progress and warnings are, and in the log where one is kept.
void say(const std::string& line);

// Says why a command ends with that exit status, which is returned.
int complain(int status, std::string_view command, std::string_view complaint);

// Writes over the line of progress on standard error, which a line for people then ends.
void showProgress(const std::string& line);

// The local time of day with milliseconds, "12:34:56.789".
std::string timeOfDay();

}  // namespace zel::app
