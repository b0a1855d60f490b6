#pragma once

#include <string>

#include <ZELTarkaSDK/zel.h>

#include "bench/echo_camera.h"

// Exchanges with the answering camera through the bindings: each gives the median of a batch's times, in seconds.

namespace zel::bench {

// Through the interface for C.
class HostInC {
 public:
  HostInC();
  ~HostInC();
  HostInC(const HostInC&) = delete;
  HostInC& operator=(const HostInC&) = delete;

  double waitedFor();

 private:
  EchoCamera bus_;
  zel_camera* camera_ = nullptr;
};

// Through the package for Python, by a process of its own. way: "waited" or "awaited".
double exchangesInPython(const std::string& way);

// Seconds that a process of Python takes more than an empty one to import the package: the median of several.
double importInPython();

}  // namespace zel::bench
