#include "facade/stream_run.h"

#include <ZELTarkaSDK/OutputAddress.h>

#include <utility>

#include "facade/camera_core.h"
#include "facade/preview.h"

namespace zel {
namespace {

using Reason = CameraError::Reason;

std::optional<std::int64_t> microsecondsOf(const std::optional<std::chrono::microseconds>& length) {
  return length ? std::optional<std::int64_t>(length->count()) : std::nullopt;
}

}  // namespace

StreamRun::StreamRun(const std::shared_ptr<CameraCore>& core, StreamOptions options)
    : core_(core),
      options_(std::move(options)),
      outputs_(options_.tell),
      stream_(*this,
              {.length = microsecondsOf(options_.length),
               .changed = [this] { changed(); },
               .picture = [preview = core->preview()](const auto& picture,
                                                      std::int64_t time) { preview->onPixelBuffer(picture, time); }}) {}

StreamRun::~StreamRun() = default;

Result<std::shared_ptr<StreamRun>> StreamRun::create(const std::shared_ptr<CameraCore>& core,
                                                     const StreamOptions& options) {
  auto run = std::make_shared<StreamRun>(core, options);
  for (const std::string& text : options.outputs) {
    const auto added = run->addOutput(text);
    if (!added) return added.error();
  }
  return run;
}

Result<CameraStream> StreamRun::begin(const std::shared_ptr<CameraCore>& core, const StreamOptions& options) {
  const auto run = create(core, options);
  if (!run) return run.error();
  if (const auto why = core->preview()->begin(*run)) return *why;
  return CameraStream(*run);
}

Pending<CameraStream> StreamRun::start(const std::shared_ptr<CameraCore>& core, const StreamOptions& options,
                                       const RequestOptions& request) {
  const auto made = create(core, options);
  if (!made) return failed<CameraStream>(made.error(), core->callbacks());
  const std::shared_ptr<StreamRun>& run = *made;
  const auto starting = std::make_shared<detail::PendingState<CameraStream>>(core->callbacks());
  const auto giveUp = [run](const CameraError& why) {
    run->failStart(why.reason == Reason::timeLimit ? run->whyNothingCame() : why);
  };
  starting->setCancel([weak = std::weak_ptr(run)] {
    if (const auto self = weak.lock()) self->failStart({Reason::cancelled, "the start was cancelled"});
  });
  {
    const std::lock_guard lock(run->mutex_);
    run->starting_ = starting;
  }
  if (const auto why = core->preview()->begin(run)) run->failStart(*why);
  // Once it can be ended: its stop may have been requested before.
  auto watch = core->watch(orLimit(request, options.startTimeLimit), giveUp);
  const std::lock_guard lock(run->mutex_);
  if (run->starting_) run->startWatch_.swap(watch);
  return Pending<CameraStream>(starting);
}

std::shared_ptr<detail::PendingState<CameraStream>> StreamRun::takeStarting() {
  std::shared_ptr<void> watch;  // destroyed without the lock
  const std::lock_guard lock(mutex_);
  watch = std::move(startWatch_);
  return std::exchange(starting_, nullptr);
}

void StreamRun::failStart(const CameraError& why) {
  const auto starting = takeStarting();
  if (!starting) return;
  stop();
  starting->set(why);
}

CameraError StreamRun::whyNothingCame() const {
  const EncodedStreamStatistics now = stream_.statistics();
  if (now.preview.units == 0) return {Reason::media, "the stream did not start: the camera sent no picture"};
  if (const auto failure = stream_.failure()) return {Reason::media, "the stream did not start: " + *failure};
  return {Reason::media, "the stream did not start: pictures come, and no sound, without which no stream begins"};
}

// -- Runs

void StreamRun::startRun(CameraStack& stack) {
  if (options_.stitched) {
    stream_.startStitched(stack, options_.resolution, *options_.stitched);
  } else {
    stream_.startCamera(stack, options_.resolution);
  }
}

void StreamRun::stopRun() { stream_.stop(); }

void StreamRun::lost() { problems_.publish({{Reason::lost, "the camera was lost; the stream waits for it"}}); }

// On a thread of the stream, which cannot stop it.
void StreamRun::changed() {
  ifMemoryAllows([this] { postToMain([this] { tellFailure(); }); });
}

// Runs it on the main queue, unless the stream has gone by then.
void StreamRun::postToMain(std::function<void()> call) {
  const auto core = core_.lock();
  if (!core) return;
  core->callbacks()->postToMain([weak = weak_from_this(), call = std::move(call)] {
    if (const auto self = weak.lock()) call();
  });
}

void StreamRun::tellFailure() {
  const auto failure = stream_.failure();
  if (!failure) return;
  const CameraError why{Reason::media, *failure};
  failStart(why);
  problems_.publish({why});
}

void StreamRun::endFor(const CameraError& why) {
  packets_.end(why);
  problems_.end(why);
  {
    const std::lock_guard lock(mutex_);
    if (!end_) end_ = why;
  }
  if (const auto starting = takeStarting()) starting->set(why);
}

void StreamRun::stop() {
  if (const auto core = core_.lock()) core->preview()->end(*this);
  endFor({Reason::closed, "the stream was stopped"});
  outputs_.finish();
}

// -- What comes

template <class T>
std::shared_ptr<detail::SubscriptionState<T>> StreamRun::subscription(const SubscriptionOptions& options) {
  if (const auto core = core_.lock()) return core->makeSubscription<T>(options);
  auto ended = std::make_shared<detail::SubscriptionState<T>>(options, std::make_shared<detail::Callbacks>(), nullptr);
  ended->end({Reason::closed, "the camera object was destroyed"});
  return ended;
}

void StreamRun::onHeaders(const StreamHeaders& headers) {
  {
    const std::lock_guard lock(mutex_);
    headers_ = headers;
  }
  outputs_.onHeaders(headers);
}

void StreamRun::onPacket(const MediaPacket& packet) {
  outputs_.onPacket(packet);
  packets_.publish(packet);
  if (!isStarting_.exchange(false)) return;
  // Not here: whoever drops the stream at once would stop it on its own thread.
  ifMemoryAllows([this] {
    postToMain([this] {
      if (const auto starting = takeStarting()) starting->set(CameraStream(shared_from_this()));
    });
  });
}

Result<int> StreamRun::addOutput(const std::string& address) {
  if (const auto why = end()) return *why;
  const auto parsed = parseOutputAddress(address);
  if (parsed) return outputs_.add(*parsed);
  return CameraError{Reason::invalid, "\"" + address + "\" is no output; use " + std::string(kOutputKinds)};
}

StreamHeaders StreamRun::headers() const {
  const std::lock_guard lock(mutex_);
  return headers_;
}

std::shared_ptr<detail::SubscriptionState<MediaPacket>> StreamRun::packets(const SubscriptionOptions& options) {
  auto state = subscription<MediaPacket>(options);
  packets_.add(state);
  return state;
}

std::optional<CameraError> StreamRun::end() const {
  const std::lock_guard lock(mutex_);
  return end_;
}

std::shared_ptr<detail::SubscriptionState<StreamProblem>> StreamRun::problems(const SubscriptionOptions& options) {
  auto state = subscription<StreamProblem>(options);
  problems_.add(state);
  return state;
}

}  // namespace zel
