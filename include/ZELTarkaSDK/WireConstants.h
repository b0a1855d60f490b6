#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// From this firmware on the clocks are synchronised and timestamp frames count ("Fireware" is the interface's
// spelling).
inline constexpr std::int32_t kFirewareVersion190 = 190;

// What msgReqSwitchAudioStreamType takes.
inline constexpr std::uint8_t kAudioStreamOff = 0, kAudioStreamOn = 1;

// The type by which msgReqGetMediaOffset asks for the camera's own lens offset.
inline constexpr std::uint8_t kMediaOffsetOfCamera = 0;

// The largest file that can be sent to the camera, in bytes: it is sent in one frame behind 74 bytes, and the frame's
// length has 32 bits.
inline constexpr std::uint64_t kLargestFile = 0xFFFFFFFFu - 74;

// What the camera takes for a drive in the path of a file that is sent to it. Its three characters are cut off the
// path's beginning, wherever it stands.
inline constexpr std::array<std::string_view, 4> kDrives = {"C:\\", "c:\\", "C:/", "c:/"};

// The marker. The camera writes it where parsing of its stream can start; the host sends it to request that.
inline constexpr std::array<std::uint8_t, 10> dataSynchronismValue = {0xAF, 0xFA, 0xAF, 0xFA, 0xAF,
                                                                      0xFA, 0xAF, 0xFA, 0xAF, 0xFA};

namespace zel {

// The protocol that a camera's accessory offers.
inline constexpr std::string_view kAccessoryProtocol = "com.zelcam.ucd";

}  // namespace zel
