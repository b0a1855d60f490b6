#include "tools/reference/protocol_reference.h"

#include <ZELTarkaSDK/PreviewFormat.h>

#include <cstddef>
#include <iomanip>
#include <sstream>
#include <string_view>

#include "protocol/camera_events.h"
#include "protocol/catalogue.h"
#include "protocol/frame.h"
#include "protocol/records.h"

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
)";

struct FrameOfType {
  FrameType type;
  std::string_view fromTheCamera;
  std::string_view toTheCamera;
};
constexpr FrameOfType kFrames[] = {
    {FrameType::previewVideo, "preview video: H.264 with start codes, cut anywhere", ""},
    {FrameType::previewAudio, "preview audio: AAC in ADTS", ""},
    {FrameType::photo, "photo: ASCII name of at most 63 bytes, zero-filled (64), then the image file", ""},
    {FrameType::message, "message: code (2), then the body", "the same"},
    {FrameType::registered, "data that was registered for", ""},
    {FrameType::timestamp, "time stamp: stream (1: 0 video, any other audio), camera time in ms (8); from firmware ",
     ""},
    {FrameType::file, "file reply: unread (2), kind (2: 2 upload), status (2: 1 failed), path, zero-filled (64)",
     "file: type (2), 0 (2), path, zero-filled (64), then the file"},
};

std::string frames() {
  std::ostringstream text;
  for (const FrameOfType& frame : kFrames) {
    text << "| " << static_cast<int>(frame.type) << " | " << frame.fromTheCamera;
    if (frame.type == FrameType::timestamp) text << kFirewareVersion190 << " on";
    text << " | " << frame.toTheCamera << (frame.toTheCamera.empty() ? "|\n" : " |\n");
  }
  text << "\nA message code from the host has its highest bit clear; the reply bears the same code with that bit set. "
          "The "
          "camera's own\nevents have codes from "
       << hex(kEvents[0].code) << " on.\n\nA session begins in the middle of the camera's stream. The host asks with "
       << hex(kRow<"registerMsgReqSendSyncData">.request) << " for the ten bytes `AF FA AF FA AF FA AF FA AF FA`,\n"
       << "which the camera writes between two frames; whole frames follow them.\n\nThe clocks are compared with "
       << hex(kSyncTimeRequest)
       << ": the request's body is the host's time in milliseconds since 1 January 2001 (8), and the\nreply's body is "
          "not "
          "read.\n\n";
  return text.str();
}

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

std::string typeOf(const RecordMember& member) {
  const std::string count = std::to_string(member.count);
  std::string text = member.type == "bytes" ? count + " bytes" : std::string(member.type);
  if (member.count > 1 && member.type != "bytes") text += " x " + count;
  return member.note.empty() ? text : text + ", " + std::string(member.note);
}

std::string records() {
  std::ostringstream text;
  text << "## Records\n\nA field called value, and what its numbers mean, is the camera's; the framework passes it "
          "through.\n\n";
  for (const RecordLayout* record : kRecords) {
    text << "### " << record->name() << ", " << record->size()
         << " bytes\n\n| offset | field | type |\n|---|---|---|\n";
    for (const RecordMember& member : *record) {
      text << "| " << member.offset << " | `" << member.name << "` | " << typeOf(member) << " |\n";
    }
    text << "\n";
  }
  return text.str();
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
  return std::string(kIntroduction) + frames() + resolutions() + records() + families() + events();
}

}  // namespace zel
