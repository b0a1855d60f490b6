#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zel::test {

// A camera of a few bytes, for links that the simulator never makes. It sends frames that nobody knows; for the link
// one is as good as another.
class BareCamera {
 public:
  class Link;
  // What it does on its connection of that number, counted from 1. The connection is closed when it returns.
  using Conduct = std::function<void(Link& link, int number)>;

  // bus: the folder, which is made where it is missing.
  BareCamera(const std::string& bus, Conduct conduct);
  ~BareCamera();
  BareCamera(const BareCamera&) = delete;
  BareCamera& operator=(const BareCamera&) = delete;

  // Its file appears on the bus, under serial number BARE.
  void attach() const;
  // Takes connections, and no more. They need not be there when it is attached.
  void listen();
  // From any thread, and so from the camera's conduct too.
  void stopListening();

  int connections() const { return connections_.load(); }

  // One connection, on a thread of its own.
  class Link {
   public:
    Link(int socket, const std::atomic<bool>& stopped) : socket_(socket), stopped_(stopped) {}

    // Waits until the host has asked for the marker. False when it closes instead.
    bool isAsked();
    void send(const std::vector<std::uint8_t>& bytes);
    void sendMarker();
    void sendFrames(int count);
    // Sends a frame now and then until the host closes.
    void flow();
    // Says nothing until the host closes.
    void beSilent();

   private:
    bool isClosed(int milliseconds);

    const int socket_;
    const std::atomic<bool>& stopped_;
  };

 private:
  void accept(int listener);
  void serve(int socket, int number);

  const std::string bus_;
  const Conduct conduct_;
  const std::string socketPath_;
  std::atomic<bool> stopped_ = false;
  std::atomic<int> connections_ = 0;
  std::atomic<int> listener_ = -1;
  std::vector<std::thread> acceptors_;  // of the thread that has the camera
  std::mutex mutex_;                    // guards the threads
  std::vector<std::thread> threads_;    // one a connection
};

}  // namespace zel::test
