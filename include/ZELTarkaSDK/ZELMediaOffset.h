#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/WireNumber.h>
#include <ZELTarkaSDK/platform/export.h>

// One lens of the camera: six values in thousandths, and two unused values.
struct ZELLensOffset {
  std::array<zel::S32, 6> p;         //  0
  std::array<zel::S32, 2> reserved;  // 24

  bool operator==(const ZELLensOffset&) const = default;
};
static_assert(zel::WireRecord<ZELLensOffset> && sizeof(ZELLensOffset) == 32);
static_assert(offsetof(ZELLensOffset, reserved) == 24);

// The geometry of the camera's two lenses in the camera's own form. Only the renderer interprets the numbers.
struct ZELMediaOffset {
  zel::U16 valueA;                      //  0
  zel::U16 valueB;                      //  2
  zel::U32 valueC;                      //  4
  zel::U8 lensCount;                    // 8 number of valid lens groups, 0 to 2
  zel::U8 reserved1;                    //  9
  zel::U16 reserved2;                   // 10
  zel::U32 reserved3;                   // 12
  std::array<ZELLensOffset, 2> lenses;  // 16

  bool operator==(const ZELMediaOffset&) const = default;
};
static_assert(zel::WireRecord<ZELMediaOffset> && sizeof(ZELMediaOffset) == 80);
static_assert(offsetof(ZELMediaOffset, valueC) == 4 && offsetof(ZELMediaOffset, lensCount) == 8);
static_assert(offsetof(ZELMediaOffset, lenses) == 16);

// The first three values of each lens and the two leading header values.
struct ZELOriginOffset {
  std::array<zel::S32, 3> lens0;  //  0
  std::array<zel::S32, 3> lens1;  // 12
  zel::U16 valueA;                // 24
  zel::U16 valueB;                // 26

  bool operator==(const ZELOriginOffset&) const = default;
};
static_assert(zel::WireRecord<ZELOriginOffset> && sizeof(ZELOriginOffset) == 28);
static_assert(offsetof(ZELOriginOffset, lens1) == 12 && offsetof(ZELOriginOffset, valueA) == 24);

// The offset as text: lens count, six values a lens in units with three decimals, valueA, valueB, valueC, joined by
// "_". A record that announces more than two lenses is read as having two. Without a lens the middle part is "(null)".
// The decimal separator is a point in every locale.
// Thread: any thread.
ZEL_EXPORT std::string getOffsetFromZELMediaOffset(const ZELMediaOffset& offset);

// The record of a text; an absent text gives an all-zero record.
// Errors: none. A missing value, or one that is no number, reads as 0. A value beyond 32 bits is clamped. Of more than
//         two lenses the first two are read, and the header values directly after them.
// Thread: any thread.
ZEL_EXPORT ZELMediaOffset getMediaOffsetFromOffset(const std::optional<std::string_view>& text);

// The same text, as the shorter record.
// Thread: any thread.
ZEL_EXPORT ZELOriginOffset getOriginOffsetFromOffset(const std::optional<std::string_view>& text);
