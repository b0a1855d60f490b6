// A gateway as a process of its own: test-gateway BUS [CAMERA]. Ends with its standard input.

#include <cstdio>

#include "tests/gateway/line/test_gateway.h"

int main(int count, char** arguments) {
  if (count < 2) return 2;
  const zel::test::TestGateway gateway(arguments[1], count > 2 ? arguments[2] : "");
  if (!gateway.isThere()) return 1;
  std::printf("listens at %s\n", gateway.path().c_str());
  std::fflush(stdout);
  while (std::getchar() != EOF) continue;
  return 0;
}
