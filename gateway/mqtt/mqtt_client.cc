#include "gateway/mqtt/mqtt_client.h"

#include <fmt/format.h>
#include <mosquitto.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/has_memory_for.h"
#include "base/mutex.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kKeepAlive = 15;                // seconds; a broker that is silent for so long is lost
constexpr int kAtLeastOnce = 1;               // quality of service
constexpr int kMostUnconfirmed = 64;          // messages on their way
constexpr milliseconds kHousekeeping{1'000};  // the library wants to be called once a second
constexpr milliseconds kFarewell{2'000};
constexpr std::size_t kMostPosts = 1'024;
constexpr int kLargestReceived = 64 << 10;  // bytes of a message

struct FreeMosquitto {
  void operator()(mosquitto* client) const { mosquitto_destroy(client); }
};

}  // namespace

class MqttClient::Run {
 public:
  explicit Run(Options options) : options_(std::move(options)), wait_(options_.firstWait) {}
  ~Run() {
    stopping_ = true;
    wake();
    if (thread_.joinable()) thread_.join();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  bool begin(std::string& error);

  void publish(MqttMessage message) {
    {
      const MutexLock lock(mutex_);
      outbox_.put(std::move(message));
    }
    wake();
  }
  void subscribe(const std::string& filter) {
    {
      const MutexLock lock(mutex_);
      filters_.insert(filter);
      newFilters_.push_back(filter);
    }
    wake();
  }
  void post(std::function<void()> call) {
    {
      const MutexLock lock(mutex_);
      if (posts_.size() < kMostPosts) posts_.push_back(std::move(call));
    }
    wake();
  }
  Statistics statistics() const {
    const MutexLock lock(mutex_);
    Statistics now = statistics_;
    now.isConnected = isConnected_;
    now.dropped = outbox_.dropped();
    return now;
  }

 private:
  void wake() const { static_cast<void>(eventfd_write(wakeUp_.get(), 1)); }
  void tell(const std::string& line) const {
    if (options_.tell) options_.tell(line);
  }

  int setUp();
  void run();
  void connect();
  void serve();
  void lose(int code);
  void sendWaiting();
  void subscribeNew();
  void runPosts();
  void waitForEvents(milliseconds most, bool isLinked);
  void sayFarewell();
  bool isStopping() const { return stopping_; }

  // Callbacks of the library, inside its calls.
  void answered(int code);
  void cameIn(const mosquitto_message& message);

  const Options options_;
  std::unique_ptr<mosquitto, FreeMosquitto> client_;
  platform::UniqueDescriptor wakeUp_;
  std::atomic<bool> stopping_ = false, isConnected_ = false;
  // Client's thread.
  milliseconds wait_;
  int unconfirmed_ = 0;
  int refusal_ = 0;  // why the broker turned the connection down
  bool hasTold_ = false;

  mutable Mutex mutex_;
  MqttOutbox outbox_ ZEL_GUARDED_BY(mutex_);
  std::set<std::string> filters_ ZEL_GUARDED_BY(mutex_);
  std::vector<std::string> newFilters_ ZEL_GUARDED_BY(mutex_);
  std::vector<std::function<void()>> posts_ ZEL_GUARDED_BY(mutex_);
  Statistics statistics_ ZEL_GUARDED_BY(mutex_);

  std::thread thread_;  // last: nothing it uses dies before it
};

// -- Setting up

// A client of the library's for each connection: what one has not sent would pile up in the next.
int MqttClient::Run::setUp() {
  client_.reset();
  client_.reset(mosquitto_new(options_.id.c_str(), true, this));
  if (!client_) return errno == EINVAL ? MOSQ_ERR_INVAL : MOSQ_ERR_NOMEM;
  mosquitto_connect_callback_set(client_.get(),
                                 [](mosquitto*, void* self, int code) { static_cast<Run*>(self)->answered(code); });
  mosquitto_publish_callback_set(client_.get(),
                                 [](mosquitto*, void* self, int) { --static_cast<Run*>(self)->unconfirmed_; });
  mosquitto_message_callback_set(client_.get(), [](mosquitto*, void* self, const mosquitto_message* message) {
    static_cast<Run*>(self)->cameIn(*message);
  });
  const auto text = [](const std::optional<std::string>& value) { return value ? value->c_str() : nullptr; };
  int code = mosquitto_username_pw_set(client_.get(), text(options_.address.user), text(options_.address.password));
  const MqttMessage& will = options_.will;
  if (code == MOSQ_ERR_SUCCESS && !will.topic.empty()) {
    code = mosquitto_will_set(client_.get(), will.topic.c_str(), static_cast<int>(will.content.size()),
                              will.content.data(), kAtLeastOnce, will.isRetained);
  }
  if (code != MOSQ_ERR_SUCCESS || !options_.address.isEncrypted) return code;
  if (options_.certificates.empty()) return mosquitto_int_option(client_.get(), MOSQ_OPT_TLS_USE_OS_CERTS, 1);
  return mosquitto_tls_set(client_.get(), options_.certificates.c_str(), nullptr, nullptr, nullptr, nullptr);
}

bool MqttClient::Run::begin(std::string& error) {
  static const int library = mosquitto_lib_init();
  wakeUp_.reset(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  const int code = library == MOSQ_ERR_SUCCESS ? setUp() : library;
  if (code != MOSQ_ERR_SUCCESS || wakeUp_.get() < 0) {
    error = code != MOSQ_ERR_SUCCESS ? mosquitto_strerror(code) : std::system_category().message(errno);
    return false;
  }
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error& fault) {
    return error = fault.what(), false;
  }
  return true;
}

// -- The client's thread

void MqttClient::Run::run() {
  while (!isStopping()) {
    ifMemoryAllows([this] { connect(); });
    ifMemoryAllows([this] { serve(); });
    for (const auto end = Clock::now() + wait_; !isStopping();) {
      const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
      if (left <= milliseconds(0)) break;
      waitForEvents(left, false);
      runPosts();
    }
    wait_ = std::min(2 * wait_, options_.longestWait);
  }
}

void MqttClient::Run::connect() {
  refusal_ = 0;
  unconfirmed_ = 0;
  const MqttAddress& to = options_.address;
  int code = setUp();
  if (code == MOSQ_ERR_SUCCESS) code = mosquitto_connect_async(client_.get(), to.host.c_str(), to.port, kKeepAlive);
  if (code != MOSQ_ERR_SUCCESS) lose(code);
}

// One connection, to its end.
void MqttClient::Run::serve() {
  while (client_ && mosquitto_socket(client_.get()) >= 0) {
    runPosts();
    if (isConnected_) {
      subscribeNew();
      sendWaiting();
    }
    if (isStopping()) return sayFarewell();
    waitForEvents(kHousekeeping, true);
    int code = mosquitto_loop_read(client_.get(), 1);
    if (code == MOSQ_ERR_SUCCESS && mosquitto_want_write(client_.get())) code = mosquitto_loop_write(client_.get(), 1);
    if (code == MOSQ_ERR_SUCCESS) code = mosquitto_loop_misc(client_.get());
    if (code != MOSQ_ERR_SUCCESS || refusal_ != 0) return lose(code);
  }
}

// Told once for each time that the broker was there.
void MqttClient::Run::lose(int code) {
  isConnected_ = false;
  const int fault = errno;
  if (std::exchange(hasTold_, true)) return;
  const std::string why = refusal_ != 0            ? mosquitto_connack_string(refusal_)
                          : code == MOSQ_ERR_ERRNO ? std::system_category().message(fault)
                                                   : mosquitto_strerror(code);
  tell(fmt::format("the broker {} cannot be reached and is tried again: {}", nameOf(options_.address), why));
}

void MqttClient::Run::answered(int code) {
  if (code != 0) {
    refusal_ = code;
    return;
  }
  {
    const MutexLock lock(mutex_);
    outbox_.restart();
    newFilters_.assign(filters_.begin(), filters_.end());
    ++statistics_.connections;
  }
  isConnected_ = true;
  wait_ = options_.firstWait / 2;  // is doubled before the next attempt
  hasTold_ = false;
  tell(fmt::format("the broker {} is connected", nameOf(options_.address)));
}

void MqttClient::Run::subscribeNew() {
  std::vector<std::string> filters;
  {
    const MutexLock lock(mutex_);
    filters.swap(newFilters_);
  }
  for (const std::string& filter : filters) mosquitto_subscribe(client_.get(), nullptr, filter.c_str(), kAtLeastOnce);
}

void MqttClient::Run::sendWaiting() {
  while (unconfirmed_ < kMostUnconfirmed) {
    std::optional<MqttMessage> next;
    {
      const MutexLock lock(mutex_);
      next = outbox_.take();
      if (next) ++statistics_.sent;
    }
    if (!next) return;
    ++unconfirmed_;
    const int code =
        mosquitto_publish(client_.get(), nullptr, next->topic.c_str(), static_cast<int>(next->content.size()),
                          next->content.data(), kAtLeastOnce, next->isRetained);
    if (code != MOSQ_ERR_SUCCESS) --unconfirmed_;
  }
}

// A retained command is one of the past, which the broker repeats with each connection.
void MqttClient::Run::cameIn(const mosquitto_message& message) {
  const bool isIgnored = message.retain || message.payloadlen < 0 || message.payloadlen > kLargestReceived;
  {
    const MutexLock lock(mutex_);
    ++(isIgnored ? statistics_.ignored : statistics_.received);
  }
  if (isIgnored || !options_.received) return;
  ifMemoryAllows([&] {
    const auto* const content = static_cast<const char*>(message.payload);
    options_.received({message.topic, std::string(content, static_cast<std::size_t>(message.payloadlen)), false});
  });
}

void MqttClient::Run::runPosts() {
  std::vector<std::function<void()>> posts;
  {
    const MutexLock lock(mutex_);
    posts.swap(posts_);
  }
  for (const auto& call : posts) ifMemoryAllows([&] { call(); });
}

void MqttClient::Run::waitForEvents(milliseconds most, bool isLinked) {
  const bool writes = isLinked && mosquitto_want_write(client_.get());
  const int linked = isLinked ? mosquitto_socket(client_.get()) : -1;
  const short wanted = writes ? POLLIN | POLLOUT : POLLIN;
  pollfd events[] = {{wakeUp_.get(), POLLIN, 0}, {linked, wanted, 0}};
  ::poll(events, 2, static_cast<int>(most.count()));
  eventfd_t ignored = 0;
  if ((events[0].revents & POLLIN) != 0) eventfd_read(wakeUp_.get(), &ignored);
}

// What is waiting still goes out, as far as the broker takes it.
void MqttClient::Run::sayFarewell() {
  const auto end = Clock::now() + kFarewell;
  if (isConnected_ && !options_.farewell.topic.empty()) {
    const MutexLock lock(mutex_);
    outbox_.put(options_.farewell);
  }
  while (isConnected_ && Clock::now() < end && mosquitto_socket(client_.get()) >= 0) {
    sendWaiting();
    bool isSent = unconfirmed_ == 0;
    {
      const MutexLock lock(mutex_);
      isSent = isSent && outbox_.isEmpty();
    }
    if (isSent) break;
    waitForEvents(milliseconds(100), true);
    if (mosquitto_loop_read(client_.get(), 1) != MOSQ_ERR_SUCCESS) break;
    mosquitto_loop_write(client_.get(), 1);
  }
  mosquitto_disconnect(client_.get());
  mosquitto_loop_write(client_.get(), 1);
}

// -- The client

std::unique_ptr<MqttClient> MqttClient::start(Options options, std::string& error) {
  auto run = std::make_unique<Run>(std::move(options));
  if (!run->begin(error)) return nullptr;
  return std::unique_ptr<MqttClient>(new MqttClient(std::move(run)));
}

MqttClient::MqttClient(std::unique_ptr<Run> run) : run_(std::move(run)) {}
MqttClient::~MqttClient() = default;

void MqttClient::publish(MqttMessage message) { run_->publish(std::move(message)); }
void MqttClient::subscribe(const std::string& filter) { run_->subscribe(filter); }
void MqttClient::post(std::function<void()> call) { run_->post(std::move(call)); }
MqttClient::Statistics MqttClient::statistics() const { return run_->statistics(); }

}  // namespace zel::gateway
