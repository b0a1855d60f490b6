#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "simulator/wire.h"

namespace zel::simulator {

// A value that the host sets with one request and can read with another.
struct Setting {
  std::uint16_t set;
  std::uint16_t get;  // 0: it cannot be read
  std::size_t size;   // bytes
};

inline constexpr std::uint16_t kExposureBias = 0x4015, kRecordingLimit = 0x402B, kActiveTime = 0x4029;
inline constexpr std::uint16_t kWhiteBalanceGain = 0x4036, kVignetteLuma = 0x4038, kVignetteGain = 0x4044;
inline constexpr std::uint16_t kSetAudioBitrate = 0x0013, kGetAudioBitrate = 0x4048;

inline constexpr Setting kSettings[] = {
    {kSetAudioBitrate, kGetAudioBitrate, 4},  //
    {0x400C, 0, 1},                           // key function
    {0x400D, 0, 1},                           // mute
    {0x4014, 0, 1},                           // image processing switch mode
    {kExposureBias, 0, 2},                    // read as the exposure index
    {0x4016, 0, 1},                           // metering mode
    {0x4017, 0, 96},                          // metering weights
    {0x4018, 0, 2},                           // still program mode
    {0x4019, 0, 3},                           // manual exposure
    {0x401A, 0, 1},                           // white balance
    {0x401B, 0, 2},                           // brightness
    {0x401C, 0, 2},                           // contrast
    {0x401D, 0, 2},                           // saturation
    {0x401E, 0, 1},                           // hue
    {0x401F, 0, 1},                           // sharpness
    {0x4020, 0, 1},                           // digital effect
    {0x4023, 0x4024, 1},                      // flicker
    {kActiveTime, 0x402A, 8},                 //
    {kRecordingLimit, 0x402C, 1},             // seconds; 0 for none
    {0x402F, 0x4030, 1},                      // self timer
    {0x4031, 0x4032, 2},                      // GPS timeout
    {kWhiteBalanceGain, 0x4037, 10},          //
    {kVignetteLuma, 0x4039, 6},               //
    {0x403D, 0x403E, 1},                      // triple press
    {0x403F, 0x4040, 8},                      // timelapse
    {kVignetteGain, 0x4045, 14},              //
    {0x4046, 0x4047, 2},                      // timelapse exposure bias
};

// The setting that a request sets, or reads; null for another request.
const Setting* settingSetBy(std::uint16_t code);
const Setting* settingReadBy(std::uint16_t code);

// The host's settings, each as the body of its request.
class Settings {
 public:
  // Errors: false for a body of the wrong size.
  bool set(const Setting& setting, Bytes body);
  bool wasSet(std::uint16_t setCode) const { return values_.contains(setCode); }

  // The set value, else the default: zeros for most.
  Bytes value(const Setting& setting) const;
  Bytes value(std::uint16_t setCode) const { return value(*settingSetBy(setCode)); }

 private:
  std::map<std::uint16_t, Bytes> values_;
};

}  // namespace zel::simulator
