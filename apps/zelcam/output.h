#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zel::app {

// One JSON object on a line of standard output. Text that is not UTF-8 is shown with replacement characters.
void printJson(const nlohmann::ordered_json& object);

// A line for people on standard output.
void printLine(const std::string& line);

// A line for people on standard error, as progress and warnings are.
void say(const std::string& line);

// The local time of day with milliseconds, "12:34:56.789".
std::string timeOfDay();

}  // namespace zel::app
