#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace zel::test {

// A camera that sends what a test wants of it, however much that is. It answers every request; what is to be sent
// besides is said by request. It is on the bus for as long as the object lives.
// Thread: what is to be sent runs on the camera's own.
class GreedyCamera {
 public:
  using Bytes = std::vector<std::uint8_t>;
  using Sending = std::function<void(GreedyCamera& camera)>;

  // onRequest: instead of the answer, by the request's code.
  GreedyCamera(const std::string& busFolder, std::map<std::uint16_t, Sending> onRequest);
  ~GreedyCamera();
  GreedyCamera(const GreedyCamera&) = delete;
  GreedyCamera& operator=(const GreedyCamera&) = delete;

  // One frame: its payload's first bytes, and zeros up to the size. False where the host has gone.
  bool sendFrame(std::uint16_t type, const Bytes& payload, std::size_t size);
  bool sendMessage(std::uint16_t code, const Bytes& body, std::size_t size);
  bool send(std::span<const std::uint8_t> bytes);

 private:
  void run();
  void serve();
  bool receive(std::span<std::uint8_t> bytes);
  void handle(std::uint16_t code);

  const std::string socket_, file_;
  const std::map<std::uint16_t, Sending> onRequest_;
  int listener_ = -1;
  std::atomic<int> host_ = -1;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

}  // namespace zel::test
