#include <ZELTarkaSDK/LinuxPlatform.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>
#include <utility>

#include <ZELTarkaSDK/platform/in_process_notification_center.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/has_memory_for.h"
#include "platform/linux/accessory_folder.h"
#include "platform/linux/linux_accessory_manager.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_documents.h"
#include "platform/linux/linux_run_loop.h"
#include "platform/linux/linux_threads.h"
#include "platform/linux/signal_mask.h"
#include "platform/linux/worker_pool.h"

namespace zel {
namespace {

using platform::LinuxRunLoop;

class LinuxQueues final : public platform::Queues {
 public:
  explicit LinuxQueues(LinuxRunLoop& mainQueue) : mainQueue_(mainQueue) {}
  platform::Queue& mainQueue() override { return mainQueue_; }
  platform::Queue& globalQueue() override { return globalQueue_; }

 private:
  LinuxRunLoop& mainQueue_;
  platform::WorkerPool globalQueue_;
};

// Never destroyed: threads of the global queue are not joined, and may still use it after the platform's destruction.
platform::Clock& lastingClock() {
  static auto* const clock = new platform::LinuxClock;
  return *clock;
}

// The time for a stack that was destroyed inside its own callback to end its thread.
constexpr std::chrono::seconds kPatience{5};

void warnOnStandardError(const std::string& warning) { std::fprintf(stderr, "%s\n", warning.c_str()); }

platform::LinuxAccessoryManager::Settings settingsOf(LinuxPlatform::Options options) {
  if (!options.warn) options.warn = warnOnStandardError;
  if (!options.inUse) {
    options.inUse = [warn = options.warn](const CameraInUse& camera) { warn(camera.inWords()); };
  }
  if (options.program.empty()) options.program = program_invocation_short_name;
  return {.folder = std::move(options.accessoriesFolder),
          .warn = std::move(options.warn),
          .inUse = std::move(options.inUse),
          .program = std::move(options.program),
          .keepCameras = options.keepCameras,
          .direct = options.direct};
}

}  // namespace

struct LinuxPlatform::State {
  explicit State(Options options)
      : queues(*mainRunLoop),
        threads(mainRunLoop),
        documents(options.documentsFolder),
        accessories(settingsOf(std::move(options)), mainRunLoop, queues.globalQueue(), notifications) {}

  // Everything that still runs ends first, then what it may have used.
  ~State() {
    waitForThreads();
    mainRunLoop->stop();
    if (service.joinable()) service.join();
    mainRunLoop->discard();
  }

  // Without a limit this would wait forever for the thread of a stack or a player that still exists.
  void waitForThreads() {
    const std::string name = threads.waitForEnds(kPatience);
    if (name.empty()) return;
    std::fprintf(stderr,
                 "ZELTarkaSDK: the LinuxPlatform is destroyed while its thread \"%s\" runs; destroy every CameraStack, "
                 "player and live source first\n",
                 name.c_str());
    std::abort();
  }

  const std::shared_ptr<LinuxRunLoop> mainRunLoop = LinuxRunLoop::create();
  platform::InProcessNotificationCenter notifications;
  LinuxQueues queues;
  platform::LinuxThreads threads;
  platform::LinuxDocuments documents;
  platform::LinuxAccessoryManager accessories;
  std::thread service;  // waits for the main run loop's timers and descriptors when the host has an executor
  platform::Ports ports{lastingClock(), threads, queues,  accessories, notifications,
                        nullptr,        nullptr, nullptr, &documents};
};

std::string LinuxPlatform::accessoriesFolder(const std::string& accessoriesFolder) {
  return platform::accessoryFolderPath(accessoriesFolder);
}

std::unique_ptr<LinuxPlatform> LinuxPlatform::create(Options options, std::string& error) {
  options.accessoriesFolder = accessoriesFolder(options.accessoriesFolder);
  if (!platform::prepareAccessoryFolder(options.accessoriesFolder, error)) return nullptr;
  try {
    return std::unique_ptr<LinuxPlatform>(new LinuxPlatform(std::make_unique<State>(std::move(options))));
  } catch (const std::exception& fault) {  // no file descriptor or memory left for the main run loop
    error = std::string("the main run loop cannot be made: ") + fault.what();
    return nullptr;
  }
}

LinuxPlatform::LinuxPlatform(std::unique_ptr<State> state) : state_(std::move(state)) {}

LinuxPlatform::~LinuxPlatform() = default;

const platform::Clock& LinuxPlatform::systemClock() { return lastingClock(); }

const platform::Ports& LinuxPlatform::ports() { return state_->ports; }

// With an executor the host runs the main queue, and these four functions do nothing.
void LinuxPlatform::runMainQueue() {
  if (!state_->service.joinable()) state_->mainRunLoop->run();
}

bool LinuxPlatform::runMainQueueFor(double seconds) {
  return !state_->service.joinable() && state_->mainRunLoop->runFor(platform::steadyDuration(seconds));
}

void LinuxPlatform::stopMainQueue() {
  if (!state_->service.joinable()) state_->mainRunLoop->leave();
}

void LinuxPlatform::drainMainQueue() {
  if (!state_->service.joinable()) state_->mainRunLoop->drain();
}

bool LinuxPlatform::setMainQueueExecutor(std::function<void(std::function<void()>)> executor) {
  if (!executor || state_->service.joinable()) return false;
  state_->mainRunLoop->setExecutor(std::move(executor));
  try {
    const platform::SignalMask noSignals;
    state_->service = std::thread([loop = state_->mainRunLoop] {
      while (!hasMemoryFor([&] { loop->run(); })) continue;  // as on every other thread
    });
    return true;
  } catch (const std::exception&) {
    state_->mainRunLoop->setExecutor(nullptr);
    return false;
  }
}

}  // namespace zel
