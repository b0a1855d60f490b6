// The one description of the program's commands.

#include "apps/zelcam/call.h"
#include "apps/zelcam/command.h"
#include "apps/zelcam/demo.h"
#include "apps/zelcam/devices.h"
#include "apps/zelcam/events.h"
#include "apps/zelcam/info.h"
#include "apps/zelcam/live.h"
#include "apps/zelcam/monitor.h"
#include "apps/zelcam/offset.h"
#include "apps/zelcam/photo.h"
#include "apps/zelcam/preview.h"
#include "apps/zelcam/record.h"
#include "apps/zelcam/sensors.h"
#include "apps/zelcam/thumbnail.h"
#include "apps/zelcam/upload.h"

namespace zel::app {
namespace {

const Command kCommands[] = {
    {"devices",
     "lists the attached accessories",
     "zelcam devices --watch",
     {},
     {{"--watch", "", "report plugging and unplugging until stopped", Kind::flag}},
     runDevices},
    {"monitor",
     "the link: status, frames and bytes a second, drops, clock",
     "zelcam --json monitor --seconds 10",
     {},
     {{"--seconds", "S", "end that long after the first frame", Kind::number, 0, 1e9},
      {"--preview", "CODE", "request the preview at that resolution code, with sound", Kind::integer, 0, 15}},
     runMonitor},
    {"info", "the camera's identity and state: battery, card, remaining capacity", "zelcam info", {}, {}, runInfo},
    {"call",
     "any operation of the camera, by its C++ name",
     "zelcam --json call msgReqSetAEEVBias -3",
     {{"OPERATION", "the operation; see --list", false}, {"ARG", "its arguments, in order", false, true}},
     sensorOptionsAnd({{"--list", "", "show every operation with its arguments", Kind::flag}}),
     runCall},
    {"events",
     "prints the camera's events",
     "zelcam --json events --count 1",
     {},
     {{"--count", "N", "end after that many", Kind::integer, 1, 1e15}},
     runEvents},
    {"photo",
     "takes a photo and saves it under the camera's name",
     "zelcam photo -o pictures --bracket -2,0,2",
     {},
     sensorOptionsAnd({{"-o,--output", "DIR", "folder to save into; default: the current one"},
                       {"--bracket", "STEPS", "one picture for each exposure step"},
                       {"--stitch", "", "save a panorama beside each photo", Kind::flag}}),
     runPhoto},
    {"record",
     "recording on the camera; stop prints the file",
     "zelcam record start",
     {{"ACTION", "start, stop or cancel", true, false, {"start", "stop", "cancel"}}},
     sensorOptionsAnd({}),
     runRecord},
    {"upload",
     "sends a file to the camera",
     "zelcam upload firmware.bin --as /update/firmware.bin",
     {{"FILE", "the file"}},
     {{"--as", "PATH", "the file's name on the camera; default: its own name"},
      {"--type", "N", "the camera's number for the kind of file; default: 0", Kind::integer, 0, 65535}},
     runUpload},
    {"preview",
     "decodes the camera's preview, and saves a picture of it",
     "zelcam preview --snapshot now.png",
     {},
     {{"--snapshot", "FILE.png", "save the last picture as PNG (FILE.jpg: as JPEG)"},
      {"--stitch", "", "unwrap it with the camera's lens offset", Kind::flag},
      {"--frames", "N", "end after that many pictures; default: 1 with --snapshot, else until stopped", Kind::integer,
       1, 1e15},
      {"--resolution", "CODE", "preview code 0 to 15: code / 4 is the size, code % 4 the rate; default: 3",
       Kind::integer, 0, 15},
      {"--decoder-threads", "N", "decode that many pictures in parallel; default: 1, from code 8 on 2", Kind::integer,
       1, 16}},
     runPreview},
    {"live",
     "streams the camera's pictures, stitched, with its sound",
     "zelcam live -o party.mp4 -o rtmp://server/live/key --duration 60",
     {},
     {{"-o,--output", "OUT", "FILE.mp4, .ts, .flv or .m3u8, - for MPEG-TS on standard output, rtmp:// or srt://",
       Kind::text, 0, 0, true},
      {"--resolution", "CODE", "preview code 0 to 15, as for preview; default: 3", Kind::integer, 0, 15},
      {"--size", "WxH", "of the stitched pictures; default: 1920x960"},
      {"--bitrate", "BPS", "bits a second of the stitched pictures; default: 8000000", Kind::integer, 1000,
       1'000'000'000},
      {"--decoder-threads", "N", "decode that many pictures in parallel; default: 1, from code 8 on 2", Kind::integer,
       1, 16},
      {"--duration", "S", "end when the stream is that long; default: until stopped", Kind::number, 0.001, 1e7},
      {"--no-stitch", "", "pass-through of the camera's own H.264", Kind::flag},
      {"--logo", "FILE.png", "show that picture at the nadir"},
      {"--logo-angle", "DEG", "rotate it by that many degrees", Kind::number, -36000, 36000},
      {"--remove-purple", "", "remove purple fringes", Kind::flag},
      {"--reconnect", "S", "wait that long for a lost camera, and continue", Kind::number, 0, 86400}},
     runLive},
    {"thumbnail",
     "one picture from a keyframe of an H.264 file",
     "zelcam thumbnail clip.h264 -o clip.png",
     {{"FILE", "H.264 with start codes"}},
     {{"-o,--output", "FILE.png", "the picture as PNG (FILE.jpg: as JPEG)"},
      {"--offset", "TEXT", "unwrap it with this lens offset"},
      {"--size", "WxH", "of the unwrapped picture, both even; default: 1440x720"}},
     runThumbnail},
    {"offset",
     "a lens offset's text as a record, and back",
     "zelcam offset 2_745_760_760_0_0_0_745_2280_760_0_0_0_3040_1520_7",
     {{"TEXT", "the offset's text", false}},
     {{"--record", "HEX", "print the text of this record of 80 bytes"}},
     runOffset},
    {"demo",
     "runs every kind of command with a simulated camera, and checks the results",
     "zelcam demo -o demo-out",
     {},
     {{"-o,--output", "DIR", "folder for the results; default: demo-out"},
      {"--duration", "S", "of the live video; default: 10", Kind::number, 1, 3600}},
     runDemo},
};

}  // namespace

std::span<const Command> commands() { return kCommands; }

}  // namespace zel::app
