// zelcam: the command-line host.

#include "apps/zelcam/command_line/command_line.h"
#include "apps/zelcam/host/interrupt.h"

int main(int argc, char** argv) {
  zel::app::blockInterrupts();
  return zel::app::runCommandLine(argc, argv);
}
