// A gateway as a process of its own: test-gateway BUS [CAMERA]. It says which cameras it has, and ends with its
// standard input.

#include <cstdio>

#include "tests/gateway/line/test_gateway.h"

namespace {

class Teller final : public zel::gateway::SharedLines::Observer {
  void cameraChanged(const zel::gateway::SharedLines::Camera& camera) override {
    std::printf("%s %s\n", camera.state == zel::gateway::LineState::streaming ? "has" : "waits for",
                camera.camera.c_str());
    std::fflush(stdout);
  }
};

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return 2;
  Teller teller;
  const zel::test::TestGateway gateway(arguments[1], count > 2 ? arguments[2] : "", &teller);
  if (!gateway.isThere()) return 1;
  while (std::getchar() != EOF) continue;
  return 0;
}
