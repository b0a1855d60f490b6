#include "facade/camera_host.h"

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "base/has_memory_for.h"

namespace zel {
namespace {

// Ends what was dropped on a thread that it has to wait for. Whoever is left at the process's end is waited for.
class Undertaker {
 public:
  static Undertaker& instance() {
    static Undertaker undertaker;
    return undertaker;
  }
  ~Undertaker() {
    for (Work& one : works_) one.thread.join();
  }

  void take(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    for (auto one = works_.begin(); one != works_.end();) {
      if (*one->isDone) {
        one->thread.join();
        one = works_.erase(one);
      } else {
        ++one;
      }
    }
    const auto isDone = std::make_shared<std::atomic<bool>>(false);
    works_.push_back({isDone, std::thread([isDone, work = std::move(work)]() mutable {
                        work();
                        work = nullptr;
                        *isDone = true;
                      })});
  }

 private:
  struct Work {
    std::shared_ptr<std::atomic<bool>> isDone;
    std::thread thread;
  };
  std::mutex mutex_;
  std::list<Work> works_;
};

}  // namespace

std::unique_ptr<CameraHost> CameraHost::create(const CameraOptions& options,
                                               std::function<void(const CameraInUse&)> inUse, std::string& error) {
  std::unique_ptr<CameraHost> host(new CameraHost);
  if (options.ports != nullptr) {
    host->use(*options.ports, options.ports->accessories);
    return host;
  }
  host->own_ = std::make_unique<Own>();
  Own& own = *host->own_;
  own.folder = LinuxPlatform::accessoriesFolder(options.accessoriesFolder);
  own.platform = LinuxPlatform::create({.accessoriesFolder = options.accessoriesFolder,
                                        .warn = options.warn,
                                        .inUse = std::move(inUse),
                                        .program = options.program,
                                        .keepCameras = true,
                                        .direct = options.direct},
                                       error);
  if (!own.platform) return nullptr;
  const auto& ofPictures = options.warnOfPictures ? options.warnOfPictures : options.warn;
  own.media =
      std::make_unique<LinuxMedia>(own.platform->ports(), LinuxMedia::Options{ofPictures, options.decoderThreads});
  try {
    own.main = std::thread([platform = own.platform.get()] {
      // A call that found no memory is lost; the others go on.
      while (!hasMemoryFor([platform] { platform->runMainQueue(); })) {
      }
    });
  } catch (const std::system_error& fault) {
    error = std::string("no thread for the camera can be started: ") + fault.what();
    return nullptr;
  }
  own.accessories = std::make_unique<BoundedAccessories>(own.platform->ports().accessories);
  if (options.staysWithCamera) own.steady = std::make_unique<SteadyAccessories>(*own.accessories);
  host->use(own.media->ports(), own.steady ? *own.steady : static_cast<platform::AccessoryManager&>(*own.accessories));
  return host;
}

void CameraHost::use(const platform::Ports& ports, platform::AccessoryManager& accessories) {
  ports_.emplace(platform::Ports{ports.clock, ports.threads, ports.queues, accessories, ports.notifications,
                                 ports.videoDecoders, ports.mediaLibrary, ports.videoEncoders, ports.documents});
  if (ports.videoDecoders == nullptr) return;
  decoders_.emplace(*ports.videoDecoders);
  ports_->videoDecoders = &*decoders_;
}

std::string CameraHost::busFolder() const { return own_ ? own_->folder : std::string(); }

// The main queue stops after what was posted before.
void CameraHost::end(Own own) {
  own.platform->ports().queues.mainQueue().post([platform = own.platform.get()] { platform->stopMainQueue(); });
  own.main.join();
  own.media.reset();
}

CameraHost::~CameraHost() {
  if (!own_ || !own_->main.joinable()) return;
  if (own_->main.get_id() == std::this_thread::get_id()) {
    Undertaker::instance().take([own = std::shared_ptr<Own>(std::move(own_))] { end(std::move(*own)); });
  } else {
    end(std::move(*own_));
  }
}

}  // namespace zel
