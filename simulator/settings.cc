#include "simulator/settings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zel::simulator {
namespace {

const Setting* find(std::uint16_t Setting::*field, std::uint16_t code) {
  const auto found = std::ranges::find(kSettings, code, field);
  return code != 0 && found != std::end(kSettings) ? found : nullptr;
}

}  // namespace

const Setting* settingSetBy(std::uint16_t code) { return find(&Setting::set, code); }
const Setting* settingReadBy(std::uint16_t code) { return find(&Setting::get, code); }

bool Settings::set(const Setting& setting, Bytes body) {
  if (body.size() != setting.size) return false;
  values_[setting.set] = std::move(body);
  return true;
}

Bytes Settings::value(const Setting& setting) const {
  if (const auto set = values_.find(setting.set); set != values_.end()) return set->second;
  if (setting.set == kSetAudioBitrate) return {0x00, 0xF4, 0x01, 0x00};  // 128000
  return Bytes(setting.size);
}

}  // namespace zel::simulator
