#include "simulator/camera_answers.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "simulator/text_file.h"

namespace zel::simulator {
namespace {

constexpr std::size_t kLongestName = 255, kAnySize = SIZE_MAX;
constexpr std::uint8_t kHighestResolution = 15;
constexpr std::uint32_t kLensIndex = 1;
constexpr std::uint32_t kExposureIndexAtZero = 12;

const Bytes kDone = {1};
const Bytes kRefused = {0};

Bytes flagged(std::span<const std::uint8_t> value) {
  Bytes body = kDone;
  add(body, value);
  return body;
}

Bytes flaggedIfAny(const std::optional<Bytes>& value) { return value ? flagged(*value) : kRefused; }

Bytes textBytes(const std::string& text) { return {text.begin(), text.end()}; }

Bytes behind(const Bytes& body, std::size_t count) { return copyOf(std::span(body).subspan(count)); }

LensRecords::Key lensKey(const Bytes& body) { return {body[0], body[1]}; }

Bytes setResolution(CameraState& state, const Bytes& body) {
  if (body[0] <= kHighestResolution) state.modes.recording = body[0];
  return {state.modes.recording};
}

Bytes setVideoRate(CameraState& state, const Bytes& body) {
  if (body[1] != 0) state.modes.videoRate = body[1];
  return {static_cast<std::uint8_t>(body[1] != 0), state.modes.videoRate};
}

Bytes setPhotoSize(CameraState& state, const Bytes& body) {
  if (body[0] < std::size(kPhotoSizes)) state.modes.photo = body[0];
  return {state.modes.photo};
}

Bytes setLocalTime(CameraState& state, const Bytes& body) {
  state.clock.set(static_cast<std::int32_t>(numberAt<std::uint32_t>(body, 0)),
                  static_cast<std::int32_t>(numberAt<std::uint32_t>(body, 4)));
  return kDone;
}

Bytes cardState(CameraState& state, const Bytes&) {
  return packed(state.cardState(), state.card.total(), state.card.free());
}

Bytes setSerial(CameraState& state, const Bytes& body) {
  const bool printable = std::ranges::all_of(body, [](std::uint8_t letter) { return letter > 0x20 && letter < 0x7F; });
  if (printable) state.serial = std::string(body.begin(), body.end());
  return flag(printable);
}

Bytes exposureIndex(CameraState& state, const Bytes&) {
  const auto bias = static_cast<std::int16_t>(numberAt<std::uint16_t>(state.settings.value(kExposureBias), 0));
  return flagged(packed(static_cast<std::uint16_t>(std::clamp<int>(bias, -12, 12) + int{kExposureIndexAtZero})));
}

Bytes setExtra(ExtraInfo& infos, const Bytes& body) {
  return flag(infos.set(textIn(std::span(body).first(kNameField)), behind(body, kNameField)));
}

Bytes vignetteEnable(CameraState& state, const Bytes&) {
  const bool set = state.settings.wasSet(kVignetteLuma) || state.settings.wasSet(kVignetteGain);
  return {1, static_cast<std::uint8_t>(set)};
}

Bytes clipped(std::uint64_t number) {
  return flagged(packed(static_cast<std::uint32_t>(std::min<std::uint64_t>(number, ~0u))));
}

struct Question {
  std::uint16_t code;
  std::size_t least, most;  // bytes of its body
  Bytes (*answer)(CameraState&, const Bytes& body);
};

constexpr Question kQuestions[] = {
    {0x000A, 1, 1, setResolution},
    {0x000C, 2, 2, setVideoRate},
    {0x4001, 0, 0,
     [](auto& state, auto&) {
       return Bytes{state.battery.powerType, state.battery.level};
     }},
    {0x4002, 1, 1, setPhotoSize},
    {0x4006, 8, 8, setLocalTime},
    {0x400E, 0, 0, cardState},
    {0x400F, 2, 2, [](auto& state, auto& body) { return flagged(state.lenses.offset(lensKey(body))); }},
    {0x4010, 2 + kOffsetRecord, 2 + kOffsetRecord,
     [](auto& state, auto& body) { return flag(state.lenses.setOffset(lensKey(body), behind(body, 2))); }},
    {0x4012, 0, 0, [](auto& state, auto&) { return flagged(textBytes(state.serial)); }},
    {0x4013, 1, 64, setSerial},
    {0x4022, 0, 0, exposureIndex},
    {0x4025, 0, 0, [](auto& state, auto&) { return flagged(textBytes(state.uuid)); }},
    {0x4026, 2, 2, [](auto& state, auto& body) { return flagged(state.lenses.origin(lensKey(body))); }},
    {0x4027, 2 + kOriginRecord, 2 + kOriginRecord,
     [](auto& state, auto& body) { return flag(state.lenses.setOrigin(lensKey(body), behind(body, 2))); }},
    {0x4028, 1, kLongestName, [](auto& state, auto& body) { return flaggedIfAny(state.files.of(textIn(body))); }},
    {0x4033, kNameField, kAnySize, [](auto& state, auto& body) { return setExtra(state.photoExtras, body); }},
    {0x4034, kNameField, kAnySize, [](auto& state, auto& body) { return setExtra(state.videoExtras, body); }},
    {0x4035, 1, kLongestName, [](auto& state, auto& body) { return flaggedIfAny(state.videoExtras.of(textIn(body))); }},
    {0x403A, 0, 0,
     [](auto& state, auto&) {
       return Bytes{1, state.settings.wasSet(kWhiteBalanceGain)};
     }},
    {0x403B, 0, 0, vignetteEnable},
    {0x403C, 0, 0, [](auto&, auto&) { return flagged(packed(kLensIndex)); }},
    {0x4041, 0, 0, [](auto&, auto&) { return kDone; }},  // deletions end before they can be cancelled
    {0x4042, 0, 0, [](auto& state, auto&) { return clipped(state.card.free() / (1000 * state.videoBytesPerMs())); }},
    {0x4043, 0, 0, [](auto& state, auto&) { return clipped(state.card.free() / state.photoSize().room); }},
};

struct Update {
  std::uint16_t code;
  std::size_t size;
  Bytes SensorUpdates::*kept;
};

constexpr Update kUpdates[] = {
    {0x400A, 24, &SensorUpdates::gps}, {0x4011, 24, &SensorUpdates::gyro}, {0x4021, 16, &SensorUpdates::orientation}};

constexpr std::uint16_t kWithoutFlag[] = {0x0007, 0x0011, 0x000F, 0x0009, 0x000A, 0x4001, 0x4002, 0x400E};

bool isIn(std::span<const std::uint16_t> codes, std::uint16_t code) {
  return std::ranges::find(codes, code) != codes.end();
}

bool isTooNew(const CameraState& state, std::uint16_t code) {
  return state.firmware < kFirmwareWithClock && (code == kSetAudioBitrate || code == kGetAudioBitrate);
}

Bytes answerSetting(CameraState& state, std::uint16_t code, const Bytes& body) {
  if (const Setting* setting = settingSetBy(code)) return flag(state.settings.set(*setting, body));
  const Setting* setting = settingReadBy(code);
  return setting != nullptr && body.empty() ? flagged(state.settings.value(*setting)) : kRefused;
}

}  // namespace

std::optional<Bytes> answerAtOnce(CameraState& state, const Storage& storage, std::uint16_t code, const Bytes& body) {
  if (const auto update = std::ranges::find(kUpdates, code, &Update::code); update != std::end(kUpdates)) {
    if (body.size() == update->size) state.sensors.*(update->kept) = body;
    return std::nullopt;
  }
  if (isTooNew(state, code)) return refusal(code);
  if (code == kCreateTextFile) return createTextFile(state.card, storage, body);
  const auto question = std::ranges::find(kQuestions, code, &Question::code);
  if (question == std::end(kQuestions)) return answerSetting(state, code, body);
  const bool fits = body.size() >= question->least && body.size() <= question->most;
  return fits ? question->answer(state, body) : refusal(code);
}

// The time synchronisation's reply is a time; only its refusal is a flag.
bool hasFlag(std::uint16_t code) { return code != kSyncTime && !isIn(kWithoutFlag, code); }

Bytes refusal(std::uint16_t code) { return isIn(kWithoutFlag, code) ? Bytes() : kRefused; }

}  // namespace zel::simulator
