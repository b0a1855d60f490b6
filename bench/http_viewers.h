#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zel::bench {

// How many cameras of the gateway on that port can be looked at.
// Errors: ends this process where the gateway cannot be reached.
int camerasThatStream(int port);

// Viewers of a gateway that read access units as fast as they come and throw them away, all on one thread of this
// process.
class HttpViewers {
 public:
  explicit HttpViewers(int port);
  ~HttpViewers();
  HttpViewers(const HttpViewers&) = delete;
  HttpViewers& operator=(const HttpViewers&) = delete;

  // One more viewer of that camera; before start().
  // Errors: ends this process where the gateway cannot be reached.
  void add(const std::string& serialNumber);
  void start();
  void stop();

  // Of all viewers.
  struct Counts {
    std::uint64_t pictures = 0, skips = 0, bytes = 0;  // skips: discontinuities
    std::uint64_t least = 0;                           // pictures of the viewer that has the fewest
  };
  Counts counts() const;

 private:
  struct Connection;
  void run();

  const int port_;
  std::vector<std::unique_ptr<Connection>> connections_;
  std::atomic<bool> stopping_ = false;
  std::thread thread_;
};

}  // namespace zel::bench
