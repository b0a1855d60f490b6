#include "simulator/simulated_camera.h"

#include <chrono>

#include "simulator/camera_answers.h"

namespace zel::simulator {
namespace {

constexpr std::uint16_t kStartPreview = 0x0004, kStopPreview = 0x0006, kSwitchSound = 0x000E;
constexpr std::uint16_t kStartRecord = 0x0008, kStartRecordExtra = 0x0012, kStartRecordTime = 0x0014;
constexpr std::uint16_t kStopRecord = 0x0009, kCancelRecord = 0x000B;
constexpr std::uint16_t kSystemControl = 0x4007, kCancelControl = 0x4008;
constexpr std::chrono::minutes kForOnePercent{2};

}  // namespace

SimulatedCamera::SimulatedCamera(CameraWorld& world, const CameraStart& start, const Storage& storage,
                                 const Faults& faults)
    : world_(world),
      state_(world, start),
      storage_(storage),
      captures_(world, state_, faults),
      recorder_(world, state_, faults),
      uploads_(world, state_, storage, faults),
      control_(world) {}

void SimulatedCamera::start() {
  world_.later(kForOnePercent, [this] { drainBattery(); });
}

void SimulatedCamera::drainBattery() {
  for (Bytes& event : drain(state_.battery)) world_.tellHost(std::move(event));
  start();
}

void SimulatedCamera::answer(const std::shared_ptr<HostLink>& host, const HostMessage& request) {
  recorder_.settle();
  switch (request.code) {
    case kShutter:
    case kShutterExtra:
    case kShutterBracketed:
      return shoot(host, request);
    case kStartRecord:
    case kStartRecordExtra:
    case kStartRecordTime:
      return host->reply(request.code, startRecording(*host, request));
    case kStopRecord:
    case kCancelRecord:
      return host->reply(request.code, endRecording(request));
    case kStartPreview:
    case kStopPreview:
      return host->reply(request.code, answerPreview(*host, request));
    case kSwitchSound:
      return host->reply(request.code, answerSound(*host, request));
    case kSystemControl:
    case kCancelControl:
      return host->reply(request.code, answerControl(request));
    default:
      break;
  }
  auto body = answerAtOnce(state_, storage_, request.code, request.body);
  if (body) host->reply(request.code, std::move(*body));
}

void SimulatedCamera::shoot(const std::shared_ptr<HostLink>& host, const HostMessage& request) {
  if (recorder_.recording()) return host->reply(request.code, {});
  captures_.shoot(host, request.code, request.body);
}

Bytes SimulatedCamera::startRecording(const HostLink& host, const HostMessage& request) {
  const std::span<const std::uint8_t> body = request.body;
  const std::size_t most = kSensorTriple + (request.code == kStartRecord ? 0 : kMostExtra);
  if (body.size() < kSensorTriple || body.size() > most || captures_.busy()) return flag(false);
  if (!recorder_.start(copyOf(body.first(kSensorTriple)), copyOf(body.subspan(kSensorTriple)))) return flag(false);
  Bytes answer = flag(true);
  if (request.code == kStartRecordTime) put(answer, static_cast<std::uint64_t>(host.mediaTime()));
  return answer;
}

Bytes SimulatedCamera::endRecording(const HostMessage& request) {
  if (!request.body.empty()) return refusal(request.code);
  if (request.code == kCancelRecord) return flag(recorder_.cancel());
  const auto file = recorder_.stop();
  return file ? entryBody(*file) : refusal(request.code);
}

Bytes SimulatedCamera::answerPreview(HostLink& host, const HostMessage& request) {
  const bool starts = request.code == kStartPreview;
  if (request.body.size() != (starts ? 1u : 0u)) return flag(false);
  if (!starts) {
    host.stopPreview();
    return flag(true);
  }
  if (request.body[0] <= 15) state_.modes.preview = request.body[0];
  host.startPreview(resolution());
  return {1, state_.modes.preview};
}

// 0 off, 1 on.
Bytes SimulatedCamera::answerSound(HostLink& host, const HostMessage& request) {
  if (request.body.size() != 1 || request.body[0] > 1) return flag(false);
  host.switchSound(request.body[0] == 1);
  return flag(true);
}

Bytes SimulatedCamera::answerControl(const HostMessage& request) {
  const Bytes& body = request.body;
  if (request.code == kSystemControl) return flag(body.size() == 2 && control_.order(body[0], body[1]));
  return flag(body.size() == 1 && control_.cancel(body[0]));
}

void SimulatedCamera::setBattery(std::uint8_t powerType, std::uint8_t level) {
  state_.battery = {powerType, level};
  world_.tellHost(message(kBatteryEvent, {powerType, level}));
}

void SimulatedCamera::setCard(std::uint8_t cardState) {
  recorder_.settle();
  state_.card.setState(cardState);
  if (recorder_.recording() && !state_.card.takes(1)) return recorder_.endForCard();
  world_.tellHost(message(kCardStateEvent, {cardState}));
}

void SimulatedCamera::fillCard() {
  recorder_.settle();
  state_.card.setState(kCardFull);
  recorder_.endForCard();
}

void SimulatedCamera::changeOffset() {
  Bytes body{state_.modes.preview};
  add(body, state_.lenses.offset({0, state_.modes.preview}));
  world_.tellHost(message(kOffsetEvent, body));
}

void SimulatedCamera::moveGyro() {
  const Bytes& gyro = state_.sensors.gyro;
  world_.tellHost(message(kGyroEvent, gyro.empty() ? Bytes(24) : gyro));
}

}  // namespace zel::simulator
