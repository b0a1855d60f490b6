#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <mosquitto.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::gateway::test {

inline constexpr char kMosquitto[] = "/usr/sbin/mosquitto";

inline bool hasBroker() { return std::filesystem::exists(kMosquitto); }

// A port that nobody uses now.
inline int freePort() {
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool isBound = ::bind(listener, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  ::close(listener);
  return isBound ? ntohs(address.sin_port) : 0;
}

// A real mosquitto, which keeps nothing between two runs.
class Broker {
 public:
  explicit Broker(const std::string& more = "allow_anonymous true\n") : port_(freePort()) {
    folder_.write("mosquitto.conf", "listener " + std::to_string(port_) + " 127.0.0.1\npersistence false\n" +
                                        (::geteuid() == 0 ? "user root\n" : "") + more);
  }
  ~Broker() { stop(); }
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  int port() const { return port_; }
  std::string address() const { return "mqtt://127.0.0.1:" + std::to_string(port_); }
  const zel::test::TemporaryFolder& folder() const { return folder_; }

  void start() {
    std::string program = kMosquitto, option = "-c", file = folder_.file("mosquitto.conf");
    char* const arguments[] = {program.data(), option.data(), file.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, folder_.file("log").c_str(), O_CREAT | O_WRONLY, 0600);
    EXPECT_EQ(posix_spawn(&process_, kMosquitto, &actions, nullptr, arguments, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_TRUE(zel::test::eventually([this] { return answers(); })) << "mosquitto does not listen";
  }
  void stop() {
    if (process_ <= 0) return;
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
  }

 private:
  bool answers() const {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    const bool isThere = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(socket);
    return isThere;
  }

  const int port_;
  zel::test::TemporaryFolder folder_;
  pid_t process_ = -1;
};

// Somebody else at the broker, who hears everything: the newest content of each topic.
class Listener {
 public:
  explicit Listener(int port) : client_(mosquitto_new(nullptr, true, this)) {
    mosquitto_connect_callback_set(client_,
                                   [](mosquitto* client, void*, int) { mosquitto_subscribe(client, nullptr, "#", 1); });
    mosquitto_message_callback_set(client_, [](mosquitto*, void* self, const mosquitto_message* message) {
      static_cast<Listener*>(self)->hear(*message);
    });
    mosquitto_reconnect_delay_set(client_, 1, 1, false);
    EXPECT_EQ(mosquitto_connect(client_, "127.0.0.1", port, 60), MOSQ_ERR_SUCCESS);
    EXPECT_EQ(mosquitto_loop_start(client_), MOSQ_ERR_SUCCESS);
  }
  ~Listener() {
    mosquitto_disconnect(client_);
    mosquitto_loop_stop(client_, true);
    mosquitto_destroy(client_);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void say(const std::string& topic, const std::string& content, bool isRetained = false) {
    mosquitto_publish(client_, nullptr, topic.c_str(), static_cast<int>(content.size()), content.data(), 1, isRetained);
  }

  // The newest content; nothing where none came.
  std::optional<std::string> at(const std::string& topic) const {
    const std::lock_guard lock(mutex_);
    const auto found = heard_.find(topic);
    return found == heard_.end() ? std::nullopt : std::optional(found->second);
  }
  bool hears(const std::string& topic, const std::string& part) const {
    return zel::test::eventually([&] {
      const auto content = at(topic);
      return content && content->find(part) != std::string::npos;
    });
  }
  void forget() {
    const std::lock_guard lock(mutex_);
    heard_.clear();
  }

 private:
  void hear(const mosquitto_message& message) {
    const std::lock_guard lock(mutex_);
    heard_[message.topic].assign(static_cast<const char*>(message.payload),
                                 static_cast<std::size_t>(message.payloadlen));
  }

  mosquitto* const client_;
  mutable std::mutex mutex_;
  std::map<std::string, std::string> heard_;
};

}  // namespace zel::gateway::test
