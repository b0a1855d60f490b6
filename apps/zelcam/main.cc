// zelcam: the command-line host.

#include <cstdio>
#include <new>

#include "apps/zelcam/command_line/command_line.h"
#include "apps/zelcam/command_line/settings.h"
#include "apps/zelcam/host/interrupt.h"

int main(int argc, char** argv) {
  zel::app::blockInterrupts();
  try {
    return zel::app::runCommandLine(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("zelcam: there is not enough memory\n", stderr);
    return zel::app::kRefused;
  }
}
