#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zel::app {

// From now on every note goes to that file, behind what it holds already.
// Errors: false where it cannot be written, and then `error` says why.
// Thread: the main one, before there is another.
bool keepLog(const std::string& path, std::string& error);

// One line of the log: the local time, the process's number, and the text without its control characters. Without a log
// it goes nowhere; where the disk is full it is lost.
// Thread: any thread.
void note(std::string_view text);

// Notes the command line of this run.
void noteCommandLine(int argc, const char* const* argv);

// What a value of the camera's status means.
const char* statusName(std::uint64_t status);

// Notes that the link's status has changed.
void noteStatus(std::uint64_t status);

}  // namespace zel::app
