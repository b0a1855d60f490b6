#pragma once

#include <string>

namespace zel {

// The protocol for people, as Markdown: frames, records, every family of requests and every event, out of the tables
// that the command layer itself works from.
std::string protocolReference();

}  // namespace zel
