#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam offset`: turns an offset's text into its record, and a record into its text. Returns the exit status.
int runOffset(const Invocation& invocation);

}  // namespace zel::app
