// The phone of docs/porting.md, such as a machine without one can be it: what its language would hand down is made of
// the standard library and a socket, so that the page's skeleton drives a simulated camera. $PHONE_CAMERA names the
// camera's socket.

#include <porting_skeleton.h>  // the page's own program, taken out of it by the build

#include <ZELTarkaSDK/ZELCameraManager.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

class StandardLooper final : public phone::Looper {
 public:
  void post(phone::Task task) override { postAfter(0, std::move(task)); }
  void postAfter(double seconds, phone::Task task) override {
    const auto due = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    const std::lock_guard lock(mutex_);
    if (!quits_) tasks_.emplace(due, std::move(task));
    changed_.notify_all();
  }
  bool isIdle() const override {
    const std::lock_guard lock(mutex_);
    return idle_;
  }
  void quit() override {
    const std::lock_guard lock(mutex_);
    quits_ = true;
    changed_.notify_all();
  }
  void run() {
    std::unique_lock lock(mutex_);
    while (!quits_) {
      if (!tasks_.empty() && tasks_.begin()->first <= Clock::now()) {
        const phone::Task task = std::move(tasks_.begin()->second);
        tasks_.erase(tasks_.begin());
        lock.unlock();
        task();
        lock.lock();
        continue;
      }
      idle_ = true;
      tasks_.empty() ? changed_.wait(lock) : static_cast<void>(changed_.wait_until(lock, tasks_.begin()->first));
      idle_ = false;
    }
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::multimap<Clock::time_point, phone::Task> tasks_;  // equal times stay in the order of posting
  bool quits_ = false, idle_ = false;
};

class StandardThread final : public phone::LooperThread {
 public:
  StandardThread(std::function<void(std::shared_ptr<phone::Looper>)> begin, phone::Task end)
      : thread_([looper = looper_, begin = std::move(begin), end = std::move(end)] {
          begin(looper);
          looper->run();
          end();
        }) {}
  std::shared_ptr<phone::Looper> looper() override { return looper_; }
  bool isCurrent() const override { return std::this_thread::get_id() == thread_.get_id(); }
  void join() override { thread_.join(); }
  void detach() override { thread_.detach(); }

 private:
  const std::shared_ptr<StandardLooper> looper_ = std::make_shared<StandardLooper>();
  std::thread thread_;
};

// A socket; a thread looks at it and tells the looper what it sees, once each time.
class Socket final : public phone::Cable {
 public:
  explicit Socket(int descriptor) : descriptor_(descriptor) {}
  ~Socket() override {
    unwatch();
    ::close(descriptor_);
  }
  void watch(phone::Looper& looper, std::function<void(zel::platform::StreamEvent)> ready) override {
    const auto heard = std::make_shared<std::function<void(zel::platform::StreamEvent)>>(std::move(ready));
    heard_ = heard;
    watcher_ = std::jthread(
        [this, &looper, weak = std::weak_ptr(heard)](const std::stop_token& stop) { look(stop, looper, weak); });
  }
  void unwatch() override {
    heard_.reset();
    if (watcher_.joinable()) watcher_ = {};
  }
  bool canRead() const override { return is(POLLIN); }
  bool canWrite() const override { return is(POLLOUT); }
  std::ptrdiff_t read(std::uint8_t* into, std::size_t most) override {
    return counted(::recv(descriptor_, into, most, MSG_DONTWAIT));
  }
  std::ptrdiff_t write(const std::uint8_t* from, std::size_t count) override {
    return counted(::send(descriptor_, from, count, MSG_DONTWAIT | MSG_NOSIGNAL));
  }

 private:
  using Hearer = std::weak_ptr<std::function<void(zel::platform::StreamEvent)>>;

  static std::ptrdiff_t counted(ssize_t count) { return count < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : count; }
  bool is(short event) const {
    pollfd look{descriptor_, event, 0};
    return ::poll(&look, 1, 0) == 1 && (look.revents & event) != 0;
  }
  static void tell(phone::Looper& looper, const Hearer& hearer, zel::platform::StreamEvent event) {
    looper.post([hearer, event] {
      if (const auto hears = hearer.lock()) (*hears)(event);
    });
  }
  void look(const std::stop_token& stop, phone::Looper& looper, const Hearer& hearer) {
    while (!stop.stop_requested()) {
      pollfd look{descriptor_, POLLIN, 0};
      if (::poll(&look, 1, 20) == 1) tell(looper, hearer, zel::platform::StreamEvent::hasBytesAvailable);
      if (is(POLLOUT)) tell(looper, hearer, zel::platform::StreamEvent::hasSpaceAvailable);
      std::this_thread::sleep_for(Milliseconds(2));  // the looper reads meanwhile
    }
  }

  const int descriptor_;
  std::shared_ptr<std::function<void(zel::platform::StreamEvent)>> heard_;
  std::jthread watcher_;
};

const std::shared_ptr<StandardLooper>& theMainLooper() {
  static const auto looper = std::make_shared<StandardLooper>();
  return looper;
}

}  // namespace

namespace phone {

std::shared_ptr<Looper> mainLooper() { return theMainLooper(); }

std::unique_ptr<LooperThread> startThread(const std::string&, std::function<void(std::shared_ptr<Looper>)> begin,
                                          Task end) {
  return std::make_unique<StandardThread>(std::move(begin), std::move(end));
}

void runInBackground(Task task) { std::thread(std::move(task)).detach(); }

std::vector<zel::platform::AccessoryDescription> attachedAccessories() {
  zel::platform::AccessoryDescription camera;
  camera.connectionID = 1;
  camera.firmwareRevision = "PHONE_1.0_192";
  camera.protocolStrings = {"com.zelcam.ucd"};
  return {camera};
}

bool isAttached(std::uint64_t connectionID) { return connectionID == 1; }

std::unique_ptr<Cable> openCable(std::uint64_t, std::string_view) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s", std::getenv("PHONE_CAMERA"));
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto* const to = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(descriptor, to, sizeof address) != 0) return nullptr;
  return std::make_unique<Socket>(descriptor);
}

void watchAccessories(std::function<void(zel::platform::AccessoryDescription, bool)>) {}

}  // namespace phone

// Asks the camera for its battery, as a phone would show it.
int main() {
  bool answered = false;
  theMainLooper()->post([&answered] {
    zel::CameraStack& camera = startCamera();
    static const auto watch = camera.accessory().observeStatus([&](std::uint64_t status) {
      if (zel::LinkStatus{status} != zel::LinkStatus::flowing) return;
      camera.manager().queryCameraBattery([&](const auto& error, std::int32_t, std::int32_t level) {
        answered = !error;
        std::printf("battery: %d %%, clock offset %s\n", level,
                    camera.accessory().timeOffset() != 0 ? "known" : "unknown");
        camera.accessory().closeCamera();
        theMainLooper()->quit();
      });
    });
  });
  theMainLooper()->postAfter(30, [] { theMainLooper()->quit(); });
  theMainLooper()->run();
  std::fflush(stdout);
  std::_Exit(answered ? 0 : 1);  // as a phone ends a process
}
