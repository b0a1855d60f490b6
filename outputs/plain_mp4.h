#pragma once

#include <string>

#include "outputs/fault.h"

namespace zel {

// Makes a fragmented MP4 file a plain one that begins to play before it is wholly there: the description first, then
// the media; of spherical video with its metadata in both versions. The file is replaced when the new one is whole.
// Errors: what went wrong; the file is then as it was.
Fault makePlainMp4(const std::string& path, bool spherical);

}  // namespace zel
