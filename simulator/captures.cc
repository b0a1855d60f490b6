#include "simulator/captures.h"

#include <algorithm>
#include <utility>

#include "simulator/exif.h"

namespace zel::simulator {
namespace {

constexpr std::size_t kSteps = 9, kBracket = 1 + kSteps;  // count, stops of each

}  // namespace

// | 0  | 64      | sensor triple                  |
// | 64 | u8      | count, of a bracketed row only |
// | 65 | s8 x 9  | stops, of a bracketed row only |
// |    | bytes   | extra, but not after 0x0007    |
bool Captures::read(std::uint16_t code, const Bytes& body, Order& order) {
  const std::span<const std::uint8_t> all = body;
  const std::size_t header = kSensorTriple + (code == kShutterBracketed ? kBracket : 0);
  if (all.size() < header || (code == kShutter && all.size() > header) || all.size() > header + kMostExtra)
    return false;
  order.sensors = copyOf(all.first(kSensorTriple));
  order.extra = copyOf(all.subspan(header));
  order.stops = {0};
  if (code != kShutterBracketed) return true;
  const std::size_t count = all[kSensorTriple];
  order.stops.clear();
  for (std::size_t i = 0; i < std::min(count, kSteps); ++i)
    order.stops.push_back(static_cast<std::int8_t>(all[kSensorTriple + 1 + i]));
  return count >= 1 && count <= kSteps;
}

void Captures::shoot(const std::shared_ptr<HostLink>& host, std::uint16_t code, const Bytes& body) {
  Order order;
  order.host = host;
  order.code = code;
  const bool understood = read(code, body, order);
  const bool room = understood && state_.card.takes(order.stops.size() * state_.photoSize().room);
  if (busy_ || !room) return host->reply(code, {});
  begin(std::move(order));
}

void Captures::begin(Order order) {
  busy_ = true;
  state_.card.take(order.stops.size() * state_.photoSize().room);
  order.time = state_.clock.now();
  for (std::size_t i = 0; i < order.stops.size(); ++i)
    order.names.push_back(state_.clock.nextFileName("IMG", faults_.nameLetters + ".jpg"));
  for (double& stop : order.stops) stop += state_.exposureBias();
  const double seconds = static_cast<double>(order.host->mediaTime()) / 1000;
  world_.tellHost(message(kShutterStateEvent, {1}));
  Bytes exif = exifSegment(state_.clock.photoTime(), positionIn(order.sensors));
  world_.onWorker(
      [this, studio = studio_, size = state_.photoSize(), seconds, order = std::move(order), exif = std::move(exif)] {
        auto files = studio->take(size.width, size.height, seconds, order.stops);
        for (Bytes& file : files) file = withSegment(file, exif);
        return [this, order, files = std::move(files)] { finish(order, files); };
      });
}

void Captures::finish(const Order& order, const std::vector<Bytes>& files) {
  busy_ = false;
  enter(order, files);
  order.host->reply(order.code, entryBody({order.time, files[0].size(), order.names[0]}));
  if (!faults_.noPhoto) sendPhotos(order, files);
  world_.tellHost(message(kShutterStateEvent, {0}));
  if (state_.cardState() == kCardFull) world_.tellHost(message(kCardStateEvent, {kCardFull}));
}

void Captures::enter(const Order& order, const std::vector<Bytes>& files) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    state_.addFile({order.time, files[i].size(), order.names[i]}, order.sensors);
    if (!order.extra.empty()) state_.photoExtras.set(order.names[i], order.extra);
  }
}

// | 0  | u8 x 64 | file name |
// | 64 | bytes   | JPEG      |
void Captures::sendPhotos(const Order& order, const std::vector<Bytes>& files) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    Bytes payload = textField(order.names[i], kNameField);
    if (!faults_.shortPhoto) add(payload, files[i]);
    order.host->send(frame(kPhoto, payload));
  }
}

}  // namespace zel::simulator
