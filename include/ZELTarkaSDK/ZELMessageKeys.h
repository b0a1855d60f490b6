#pragma once

#include <string_view>

// The text keys of requests, replies and events. Their spelling, capitals included, is the interface's.
namespace zel::key {

inline constexpr std::string_view ucharValue = "ucharValue";            // std::uint8_t
inline constexpr std::string_view ucharValue2 = "ucharValue2";          // std::uint8_t
inline constexpr std::string_view shortValue = "shortValue";            // std::int16_t
inline constexpr std::string_view ushortValue = "ushortValue";          // std::uint16_t
inline constexpr std::string_view intValue = "intValue";                // std::int32_t
inline constexpr std::string_view intValue2 = "intValue2";              // std::int32_t
inline constexpr std::string_view uintValue = "uintValue";              // std::uint32_t
inline constexpr std::string_view uintValue2 = "uintValue2";            // std::uint32_t
inline constexpr std::string_view uintValue3 = "uintValue3";            // std::uint32_t
inline constexpr std::string_view int64Value = "int64Value";            // std::int64_t
inline constexpr std::string_view uint64Value = "uint64Value";          // std::uint64_t
inline constexpr std::string_view uint64Value2 = "uint64Value2";        // std::uint64_t
inline constexpr std::string_view nsString = "nsString";                // std::string
inline constexpr std::string_view nsData = "NSData";                    // ZELData
inline constexpr std::string_view nsValue1 = "NSValue1";                // a record
inline constexpr std::string_view meteringWeights = "IPAEMMWeight";     // ZELIPAEMMWeight
inline constexpr std::string_view exposureParam = "IPMEParam";          // ZELIPMEParam
inline constexpr std::string_view gpsData = "gpsData";                  // ZELGpsData
inline constexpr std::string_view gyroData = "gyroData";                // ZELGyroData
inline constexpr std::string_view orientationData = "orientationData";  // ZELOrientationData
inline constexpr std::string_view fileTime = "fileTime";                // std::uint32_t
inline constexpr std::string_view fileSize = "FileSize";                // std::uint64_t
inline constexpr std::string_view fileName = "fileName";                // std::string
inline constexpr std::string_view nsError = "NSError";                  // ZELError

}  // namespace zel::key
