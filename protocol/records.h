#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string_view>

#include <ZELTarkaSDK/ZELCameraRecords.h>

// The members of the records that messages carry, by their names.
namespace zel {

// What a number of the wire is called.
template <class Number>
consteval std::string_view numberName() {
  constexpr std::string_view kNames[][3] = {
      {"u8", "s8", ""}, {"u16", "s16", ""}, {"u32", "s32", "f32"}, {"u64", "s64", "f64"}};
  constexpr std::size_t kKind = std::floating_point<Number> ? 2 : std::signed_integral<Number> ? 1 : 0;
  return kNames[std::bit_width(sizeof(Number)) - 1][kKind];
}

struct RecordMember {
  std::string_view name;
  std::string_view type;  // "u8", a record's name, or "bytes"
  std::size_t count = 0;  // so many of it
  std::size_t size = 0;   // of all of them, in bytes
  std::string_view note;  // for people
  std::size_t offset = 0;
};

void membersDoNotFillTheRecord();  // never defined: a call of it does not compile, and says why

// A record's members, in the order of the wire.
class RecordLayout {
 public:
  consteval RecordLayout() = default;
  consteval RecordLayout(std::string_view name, std::size_t size, std::initializer_list<RecordMember> members)
      : name_(name), size_(size) {
    std::size_t offset = 0;
    for (RecordMember member : members) {
      member.offset = offset;
      offset += member.size;
      members_[count_++] = member;
    }
    if (offset != size) membersDoNotFillTheRecord();
  }

  constexpr std::string_view name() const { return name_; }
  constexpr std::size_t size() const { return size_; }
  constexpr const RecordMember* begin() const { return members_.data(); }
  constexpr const RecordMember* end() const { return members_.data() + count_; }

 private:
  std::string_view name_;
  std::size_t size_ = 0;
  std::array<RecordMember, 7> members_{};
  std::size_t count_ = 0;
};

// The layout of a record: kLayout<ZELGpsData>.
template <class Record>
inline constexpr RecordLayout kLayout;

namespace layout {

// What a member is made of.
template <class T>
struct Shape {
  static constexpr std::string_view type = kLayout<T>.name();
  static constexpr std::size_t count = 1;
};
template <class Number>
struct Shape<Le<Number>> {
  static constexpr std::string_view type = numberName<Number>();
  static constexpr std::size_t count = 1;
};
template <class T, std::size_t size>
struct Shape<std::array<T, size>> {
  static constexpr std::string_view type = Shape<T>::type;
  static constexpr std::size_t count = size;
};

template <class Record, class T>
consteval RecordMember member(std::string_view name, T Record::*, std::string_view note = {}) {
  return {name, Shape<T>::type, Shape<T>::count, sizeof(T), note};
}

// Bytes that nobody reads.
template <class Record, class... T>
consteval RecordMember unread(std::string_view name, T Record::*...) {
  constexpr std::size_t kSize = (sizeof(T) + ...);
  return {name, "bytes", kSize, kSize, "not read"};
}

}  // namespace layout

// clang-format off
template <>
inline constexpr RecordLayout kLayout<ZELGpsData>{"ZELGpsData", sizeof(ZELGpsData), {
    layout::member("latitude", &ZELGpsData::latitude, "degrees"),
    layout::member("longitude", &ZELGpsData::longitude, "degrees"),
    layout::member("altitude", &ZELGpsData::altitude, "metres"),
}};
template <>
inline constexpr RecordLayout kLayout<ZELGyroData>{"ZELGyroData", sizeof(ZELGyroData), {
    layout::member("ax", &ZELGyroData::ax),
    layout::member("ay", &ZELGyroData::ay),
    layout::member("az", &ZELGyroData::az),
    layout::member("gx", &ZELGyroData::gx),
    layout::member("gy", &ZELGyroData::gy),
    layout::member("gz", &ZELGyroData::gz),
}};
template <>
inline constexpr RecordLayout kLayout<ZELOrientationData>{"ZELOrientationData", sizeof(ZELOrientationData), {
    layout::member("x", &ZELOrientationData::x),
    layout::member("y", &ZELOrientationData::y),
    layout::member("z", &ZELOrientationData::z),
    layout::member("w", &ZELOrientationData::w),
}};
template <>
inline constexpr RecordLayout kLayout<aeb_info>{"aeb_info", sizeof(aeb_info), {
    layout::member("count", &aeb_info::count, "pictures"),
    layout::member("steps", &aeb_info::steps, "exposure step of each"),
}};
template <>
inline constexpr RecordLayout kLayout<ZELIPMEParam>{"ZELIPMEParam", sizeof(ZELIPMEParam), {
    layout::member("value1", &ZELIPMEParam::value1),
    layout::member("value2", &ZELIPMEParam::value2),
}};
template <>
inline constexpr RecordLayout kLayout<ZELIPAEMMWeight>{"ZELIPAEMMWeight", sizeof(ZELIPAEMMWeight), {
    layout::member("weights", &ZELIPAEMMWeight::weights),
}};
template <>
inline constexpr RecordLayout kLayout<timelapse_info>{"timelapse_info", sizeof(timelapse_info), {
    layout::member("value1", &timelapse_info::value1),
    layout::member("value2", &timelapse_info::value2),
    layout::member("value3", &timelapse_info::value3),
    layout::member("exposure", &timelapse_info::exposure),
}};
template <>
inline constexpr RecordLayout kLayout<calib_wb_gain>{"calib_wb_gain", sizeof(calib_wb_gain), {
    layout::member("value1", &calib_wb_gain::value1),
    layout::member("value2", &calib_wb_gain::value2),
    layout::member("gains", &calib_wb_gain::gains),
}};
template <>
inline constexpr RecordLayout kLayout<calib_vignette_luma>{"calib_vignette_luma", sizeof(calib_vignette_luma), {
    layout::member("value1", &calib_vignette_luma::value1),
    layout::member("value2", &calib_vignette_luma::value2),
    layout::member("lumas", &calib_vignette_luma::lumas),
}};
template <>
inline constexpr RecordLayout kLayout<calib_vignette_gain>{"calib_vignette_gain", sizeof(calib_vignette_gain), {
    layout::member("value1", &calib_vignette_gain::value1),
    layout::member("value2", &calib_vignette_gain::value2),
    layout::member("gains", &calib_vignette_gain::gains),
}};
template <>
inline constexpr RecordLayout kLayout<ZELLensOffset>{"ZELLensOffset", sizeof(ZELLensOffset), {
    layout::member("p", &ZELLensOffset::p, "in thousandths"),
    layout::member("reserved", &ZELLensOffset::reserved, "not read"),
}};
template <>
inline constexpr RecordLayout kLayout<ZELMediaOffset>{"ZELMediaOffset", sizeof(ZELMediaOffset), {
    layout::member("valueA", &ZELMediaOffset::valueA),
    layout::member("valueB", &ZELMediaOffset::valueB),
    layout::member("valueC", &ZELMediaOffset::valueC),
    layout::member("lensCount", &ZELMediaOffset::lensCount, "0 to 2"),
    layout::unread("reserved", &ZELMediaOffset::reserved1, &ZELMediaOffset::reserved2, &ZELMediaOffset::reserved3),
    layout::member("lenses", &ZELMediaOffset::lenses),
}};
template <>
inline constexpr RecordLayout kLayout<ZELOriginOffset>{"ZELOriginOffset", sizeof(ZELOriginOffset), {
    layout::member("lens0", &ZELOriginOffset::lens0, "in thousandths"),
    layout::member("lens1", &ZELOriginOffset::lens1, "in thousandths"),
    layout::member("valueA", &ZELOriginOffset::valueA),
    layout::member("valueB", &ZELOriginOffset::valueB),
}};
template <>
inline constexpr RecordLayout kLayout<ZELVideoMnd>{"ZELVideoMnd", sizeof(ZELVideoMnd), {
    layout::unread("head", &ZELVideoMnd::head),
    layout::member("value", &ZELVideoMnd::value, "not read"),
    layout::member("offset", &ZELVideoMnd::offset),
    layout::member("gps", &ZELVideoMnd::gps),
    layout::member("gyro", &ZELVideoMnd::gyro),
    layout::member("orientation", &ZELVideoMnd::orientation),
    layout::unread("tail", &ZELVideoMnd::tail),
}};
// clang-format on

// All of them, as people read them: those of requests, then those of the lenses.
inline constexpr const RecordLayout* kRecords[] = {
    &kLayout<ZELGpsData>,          &kLayout<ZELGyroData>,
    &kLayout<ZELOrientationData>,  &kLayout<aeb_info>,
    &kLayout<ZELIPMEParam>,        &kLayout<ZELIPAEMMWeight>,
    &kLayout<timelapse_info>,      &kLayout<calib_wb_gain>,
    &kLayout<calib_vignette_luma>, &kLayout<calib_vignette_gain>,
    &kLayout<ZELLensOffset>,       &kLayout<ZELMediaOffset>,
    &kLayout<ZELOriginOffset>,     &kLayout<ZELVideoMnd>,
};

}  // namespace zel
