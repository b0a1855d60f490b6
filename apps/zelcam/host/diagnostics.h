#pragma once

#include <ZELTarkaSDK/LinkStatus.h>

#include <string>
#include <string_view>

namespace zel::app {

// From now on every note is appended to that file.
// Errors: false if it cannot be written; `error` then says why.
// Thread: main thread, before others are started.
bool keepLog(const std::string& path, std::string& error);

// Writes one line to the log: the local time, the process ID, and the text without control characters. Does nothing
// without a log; on a full disk the line is lost.
// Thread: any thread.
void note(std::string_view text);

// Notes the command line of this run.
void noteCommandLine(int argc, const char* const* argv);

// Notes a change of the link's status.
void noteStatus(LinkStatus status);

}  // namespace zel::app
