#include "tools/reference/protocol_reference.h"

#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELMediaOffset.h>

#include <cstddef>
#include <initializer_list>
#include <iomanip>
#include <sstream>
#include <string_view>
#include <vector>

#include "protocol/camera_events.h"
#include "protocol/catalogue.h"
#include "protocol/frame.h"

namespace zel {
namespace {

std::string hex(std::uint16_t code) {
  std::ostringstream text;
  text << "0x" << std::hex << std::uppercase << std::setw(4) << std::setfill('0') << code;
  return text.str();
}

std::string hex(UcdCode code) { return hex(static_cast<std::uint16_t>(code)); }

// -- Frames

constexpr std::string_view kIntroduction = R"(# The camera's protocol

Made by `./run docs` from the tables that the framework works from. All numbers are little-endian; records have no padding.

## Frames

Both directions are a row of frames with nothing between them:

```
0        4       6                     length
+--------+-------+---------------------+
| length | type  | payload             |
+--------+-------+---------------------+
```

`length` counts the whole frame, its own 6 header bytes included. A length below 6 or above 256 MiB means that the position in the
stream is lost.

| type | from the camera | to the camera |
|---|---|---|
| 1 | preview video: H.264 with start codes, cut anywhere | |
| 2 | preview audio: AAC in ADTS | |
| 3 | photo: ASCII name of at most 63 bytes, zero-filled (64), then the image file | |
| 4 | message: code (2), then the body | the same |
| 7 | data that was registered for | |
| 8 | time stamp: stream (1: 0 video, any other audio), camera time in ms (8); from firmware 190 on | |
| 9 | file reply: unread (2), kind (2: 2 upload), status (2: 1 failed), path, zero-filled (64) | file: type (2), 0 (2), path, zero-filled (64), then the file |

A message code from the host has its highest bit clear; the reply bears the same code with that bit set. The camera's own
events have codes from 0x6001 on.

A session begins in the middle of the camera's stream. The host asks with 0x402E for the ten bytes `AF FA AF FA AF FA AF FA AF FA`,
which the camera writes between two frames; whole frames follow them.

The clocks are compared with 0x4049: the request's body is the host's time in milliseconds since 1 January 2001 (8), and the
reply's body is not read.

)";

std::string resolutions() {
  std::ostringstream text;
  text << "## Preview resolutions\n\nThe size is chosen by code / 4, the rate by code % 4.\n\n"
          "| code | size | pictures a second |\n|---|---|---|\n";
  for (std::size_t code = 0; code < kPreviewFormats.size(); ++code) {
    const PreviewFormat& format = kPreviewFormats[code];
    text << "| " << code << " | " << format.width << " x " << format.height << " | " << format.fps << " |\n";
  }
  return text.str() + "\n";
}

// -- Records

struct Member {
  std::size_t offset;
  std::string_view name;
  std::string_view type;
};

std::string record(std::string_view name, std::size_t size, std::initializer_list<Member> members) {
  std::ostringstream text;
  text << "### " << name << ", " << size << " bytes\n\n| offset | field | type |\n|---|---|---|\n";
  for (const Member& member : members) {
    text << "| " << member.offset << " | `" << member.name << "` | " << member.type << " |\n";
  }
  return text.str() + "\n";
}

std::string sensorRecords() {
  return record("ZELGpsData", sizeof(ZELGpsData),
                {{offsetof(ZELGpsData, latitude), "latitude", "f64, degrees"},
                 {offsetof(ZELGpsData, longitude), "longitude", "f64, degrees"},
                 {offsetof(ZELGpsData, altitude), "altitude", "f64, metres"}}) +
         record("ZELGyroData", sizeof(ZELGyroData),
                {{offsetof(ZELGyroData, ax), "ax", "f32"},
                 {offsetof(ZELGyroData, ay), "ay", "f32"},
                 {offsetof(ZELGyroData, az), "az", "f32"},
                 {offsetof(ZELGyroData, gx), "gx", "f32"},
                 {offsetof(ZELGyroData, gy), "gy", "f32"},
                 {offsetof(ZELGyroData, gz), "gz", "f32"}}) +
         record("ZELOrientationData", sizeof(ZELOrientationData),
                {{offsetof(ZELOrientationData, x), "x", "s32"},
                 {offsetof(ZELOrientationData, y), "y", "s32"},
                 {offsetof(ZELOrientationData, z), "z", "s32"},
                 {offsetof(ZELOrientationData, w), "w", "s32"}});
}

std::string exposureRecords() {
  return record("aeb_info", sizeof(aeb_info),
                {{offsetof(aeb_info, count), "count", "u8, pictures"},
                 {offsetof(aeb_info, steps), "steps", "s8 x 9, exposure step of each"}}) +
         record("ZELIPMEParam", sizeof(ZELIPMEParam),
                {{offsetof(ZELIPMEParam, value1), "value1", "u8"}, {offsetof(ZELIPMEParam, value2), "value2", "u8"}}) +
         record("ZELIPAEMMWeight", sizeof(ZELIPAEMMWeight),
                {{offsetof(ZELIPAEMMWeight, weights), "weights", "u8 x 96"}}) +
         record("timelapse_info", sizeof(timelapse_info),
                {{offsetof(timelapse_info, value1), "value1", "u32"},
                 {offsetof(timelapse_info, value2), "value2", "u8"},
                 {offsetof(timelapse_info, value3), "value3", "u8"},
                 {offsetof(timelapse_info, exposure), "exposure", "ZELIPMEParam"}});
}

std::string calibrationRecords() {
  return record("calib_wb_gain", sizeof(calib_wb_gain),
                {{offsetof(calib_wb_gain, value1), "value1", "u8"},
                 {offsetof(calib_wb_gain, value2), "value2", "u8"},
                 {offsetof(calib_wb_gain, gains), "gains", "s16 x 4"}}) +
         record("calib_vignette_luma", sizeof(calib_vignette_luma),
                {{offsetof(calib_vignette_luma, value1), "value1", "u8"},
                 {offsetof(calib_vignette_luma, value2), "value2", "u8"},
                 {offsetof(calib_vignette_luma, lumas), "lumas", "s16 x 2"}}) +
         record("calib_vignette_gain", sizeof(calib_vignette_gain),
                {{offsetof(calib_vignette_gain, value1), "value1", "u8"},
                 {offsetof(calib_vignette_gain, value2), "value2", "u8"},
                 {offsetof(calib_vignette_gain, gains), "gains", "s16 x 6"}});
}

std::string offsetRecords() {
  return record("ZELLensOffset", sizeof(ZELLensOffset),
                {{offsetof(ZELLensOffset, p), "p", "s32 x 6, in thousandths"},
                 {offsetof(ZELLensOffset, reserved), "reserved", "s32 x 2, not read"}}) +
         record("ZELMediaOffset", sizeof(ZELMediaOffset),
                {{offsetof(ZELMediaOffset, valueA), "valueA", "u16"},
                 {offsetof(ZELMediaOffset, valueB), "valueB", "u16"},
                 {offsetof(ZELMediaOffset, valueC), "valueC", "u32"},
                 {offsetof(ZELMediaOffset, lensCount), "lensCount", "u8, 0 to 2"},
                 {offsetof(ZELMediaOffset, reserved1), "reserved", "7 bytes, not read"},
                 {offsetof(ZELMediaOffset, lenses), "lenses", "ZELLensOffset x 2"}}) +
         record("ZELOriginOffset", sizeof(ZELOriginOffset),
                {{offsetof(ZELOriginOffset, lens0), "lens0", "s32 x 3, in thousandths"},
                 {offsetof(ZELOriginOffset, lens1), "lens1", "s32 x 3, in thousandths"},
                 {offsetof(ZELOriginOffset, valueA), "valueA", "u16"},
                 {offsetof(ZELOriginOffset, valueB), "valueB", "u16"}}) +
         record("ZELVideoMnd", sizeof(ZELVideoMnd),
                {{offsetof(ZELVideoMnd, head), "head", "8 bytes, not read"},
                 {offsetof(ZELVideoMnd, value), "value", "u64, not read"},
                 {offsetof(ZELVideoMnd, offset), "offset", "ZELMediaOffset"},
                 {offsetof(ZELVideoMnd, gps), "gps", "ZELGpsData"},
                 {offsetof(ZELVideoMnd, gyro), "gyro", "ZELGyroData"},
                 {offsetof(ZELVideoMnd, orientation), "orientation", "ZELOrientationData"},
                 {offsetof(ZELVideoMnd, tail), "tail", "32 bytes, not read"}});
}

std::string records() {
  return "## Records\n\nA field called value, and what its numbers mean, is the camera's; the framework passes it "
         "through.\n\n" +
         sensorRecords() + exposureRecords() + calibrationRecords() + offsetRecords();
}

// -- Messages

std::string described(const FieldList& fields) {
  std::string text;
  for (const Field& field : fields) {
    if (!text.empty()) text += ", ";
    text += "`" + std::string(field.key) + "` " + std::string(field.layout);
  }
  return text;
}

std::string described(const Reply& reply) {
  if (reply.form == Reply::Form::none) return "none";
  std::string text = reply.form == Reply::Form::flag ? "flag" : "";
  for (const std::string& part : {described(reply.fields), std::string(reply.note)}) {
    if (!text.empty() && !part.empty()) text += part == reply.note ? "; " : ", ";
    text += part;
  }
  return text;
}

std::string families() {
  std::ostringstream text;
  text << "## Requests\n\n"
          "A flag is a byte that is not 0 where the camera agrees. A body that is too short for its fields is a "
          "refusal; "
          "bytes behind them\nare ignored. The text in backquotes is the key of the field in request and reply "
          "dictionaries.\n\n"
          "| registered by | type | request | body | reply | body |\n|---|---|---|---|---|---|\n";
  for (const Family& family : kFamilies) {
    text << "| `" << family.registering << "`" << (family.registered == Registered::never ? ", never" : "") << " | "
         << static_cast<int>(family.type) << " | " << hex(family.request) << " | "
         << (family.body.empty() ? "-" : described(family.body)) << " | "
         << (family.reply.form == Reply::Form::none ? "-" : hex(replyTo(family.request))) << " | "
         << described(family.reply) << " |\n";
  }
  return text.str() + "\n";
}

std::string events() {
  std::ostringstream text;
  text << "## Events\n\nNumbers that a short event lacks are 0.\n\n"
          "| registered by | event | code | body |\n|---|---|---|---|\n";
  for (const CameraEvent& event : kEvents) {
    text << "| `" << event.registering << "` | " << static_cast<std::int64_t>(event.type) << " | " << hex(event.code)
         << " | " << (event.custom != nullptr ? std::string(event.description) : described(event.fields)) << " |\n";
  }
  return text.str();
}

}  // namespace

std::string protocolReference() {
  return std::string(kIntroduction) + resolutions() + records() + families() + events();
}

}  // namespace zel
