#include "gateway/api/rows_of_streams.h"

#include <memory>
#include <utility>
#include <variant>

#include "gateway/api/call_problem.h"
#include "gateway/api/event_stream.h"
#include "gateway/feed/live_feed.h"

namespace zel::gateway {
namespace {

using HeldRef = std::shared_ptr<HeldCamera>;

// One reader's side of a feed, and what keeps the camera's stream running for it.
class LiveSource final : public ByteSource {
 public:
  LiveSource(HeldRef held, FeedForm form, std::function<void()> ready)
      : held_(std::move(held)),
        hold_(held_->live().hold()),
        viewer_(held_->live().feed().join(form, std::move(ready))) {}

  std::size_t read(std::span<std::uint8_t> to) override { return viewer_->read(to); }
  bool isEnded() const override { return viewer_->isEnded(); }

 private:
  const HeldRef held_;
  const std::shared_ptr<void> hold_;
  const std::shared_ptr<Viewer> viewer_;
};

// One reader's events, and what brings them.
class EventSource final : public ByteSource {
 public:
  EventSource(HeldRef held, std::function<void()> ready)
      : held_(std::move(held)), events_(std::make_shared<EventStream>(std::move(ready))) {
    // Statistics come once a second in every status, so that a reader knows that the connection lives.
    taking_ = held_->notices().take([events = events_](const Notice& notice) { events->put(notice); });
    events_->put({Notice::Kind::link, {{"status", toString(held_->status())}}});
  }

  std::size_t read(std::span<std::uint8_t> to) override { return events_->read(to); }
  bool isEnded() const override { return events_->isEnded(); }

 private:
  const HeldRef held_;
  const std::shared_ptr<EventStream> events_;
  std::shared_ptr<void> taking_;
};

Response grows(std::string type, std::function<std::shared_ptr<ByteSource>(std::function<void()>)> open) {
  Response response{.type = std::move(type)};
  response.headers.emplace_back("Cache-Control", "no-store");
  response.headers.emplace_back("X-Accel-Buffering", "no");  // a reverse proxy passes it on as it comes
  response.content = StreamContent{std::move(open)};
  return response;
}

auto liveHandler(Cameras& cameras, FeedForm form, const char* type) {
  return [&cameras, form, type](const RowCall& call, const Respond& respond) {
    auto found = reachable(cameras, call.parameter("serial"));
    if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
    respond(grows(type, [held = std::get<HeldRef>(found), form](std::function<void()> ready) {
      return std::make_shared<LiveSource>(held, form, std::move(ready));
    }));
  };
}

}  // namespace

std::vector<Row> streamRows(Cameras& cameras) {
  const auto events = [&cameras](const RowCall& call, const Respond& respond) {
    auto found = known(cameras, call.parameter("serial"));
    if (auto* const refusal = std::get_if<Response>(&found)) return respond(std::move(*refusal));
    respond(grows("text/event-stream", [held = std::get<HeldRef>(found)](std::function<void()> ready) {
      return std::make_shared<EventSource>(held, std::move(ready));
    }));
  };
  return {
      {"GET",
       "/api/v1/cameras/{serial}/events",
       "events",
       "Events of the camera (camera), its status (link), and what it has counted once a second (statistics)",
       {{200, "text/event-stream", "", "events until the reader goes"}},
       events},
      {"GET",
       "/api/v1/cameras/{serial}/live.mp4",
       "liveMp4",
       "The camera's own pictures and sound as fragmented MP4 that grows",
       {{200, "video/mp4", "", "fragments until the reader goes, from a key picture on"}},
       liveHandler(cameras, FeedForm::mp4, "video/mp4")},
      {"GET",
       "/api/v1/cameras/{serial}/live.units",
       "liveUnits",
       "The same as access units",
       {{200, "application/octet-stream", "", "records until the reader goes, from a description on"}},
       liveHandler(cameras, FeedForm::units, "application/octet-stream")},
  };
}

}  // namespace zel::gateway
