#pragma once

#include <span>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// All commands, in the order in which they are shown.
std::span<const Command> commands();

// One function a command. Each returns the exit status.

// `zelcam call`: makes one call of any operation and shows its error and its reply's values. `--list` shows all
// operations instead.
int runCall(const Invocation& invocation);

// `zelcam demo`: runs the simulator and every kind of command against it, and reads back what they made.
int runDemo(const Invocation& invocation);

// `zelcam devices`: the accessories present; with `--watch` also those that come and go, until the user stops it. No
// accessory at all is an empty list and no failure.
int runDevices(const Invocation& invocation);

// `zelcam events`: shows the camera's events as they come, `--count` of them or until the user stops it. Status 3 where
// the camera is lost before that.
int runEvents(const Invocation& invocation);

// `zelcam info`: who the camera is and how it is, in one table. What the camera refused or did not answer is told apart
// from the rest, which is shown.
int runInfo(const Invocation& invocation);

// `zelcam live`: streams the camera's pictures, stitched, and its sound to files and servers, until `--duration` is
// over or the user stops it.
int runLive(const Invocation& invocation);

// `zelcam monitor`: watches the link for `--seconds` after the first frame, or until the user stops it. A camera that
// leaves meanwhile is reported and waited for. Status 3 when no frame came within the time-out.
int runMonitor(const Invocation& invocation);

// `zelcam offset`: turns an offset's text into its record, and a record into its text.
int runOffset(const Invocation& invocation);

// `zelcam photo`: has the camera take a photo, or an exposure bracket, and saves what it sends.
int runPhoto(const Invocation& invocation);

// `zelcam preview`: decodes the camera's preview, tells how it runs, and saves one picture where `--snapshot` asks for
// it. `--frames` pictures, or until the user stops it.
int runPreview(const Invocation& invocation);

// `zelcam record`: starts, stops or cancels a recording on the camera.
int runRecord(const Invocation& invocation);

// `zelcam serve`: holds the cameras of the bus and serves them over HTTP, until the user stops it.
int runServe(const Invocation& invocation);

// `zelcam thumbnail`: one picture out of a file's key frame, unwrapped where `--offset` is given. No camera is needed.
int runThumbnail(const Invocation& invocation);

// `zelcam upload`: sends a file to the camera. The time-out counts from the last byte that the camera took.
int runUpload(const Invocation& invocation);

}  // namespace zel::app
