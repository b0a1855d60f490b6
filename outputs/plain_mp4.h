#pragma once

#include <string>

#include "outputs/fault.h"

namespace zel {

// Converts a fragmented MP4 file to a plain one that can be played while it is downloaded: the index (moov) first, then
// the media; for spherical video with the metadata in both versions. The file is replaced when the new one is complete.
// Errors: what went wrong; the file is then unchanged.
Fault makePlainMp4(const std::string& path, bool spherical);

}  // namespace zel
