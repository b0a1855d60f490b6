#pragma once

#include <chrono>
#include <vector>

#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"
#include "gateway/media/media_folder.h"
#include "gateway/media/worker.h"

namespace zel::gateway {

// Photos and exposure brackets, stored in the media folder, with panoramas of them where that is asked for.
//
// All of these must outlive the rows and what they have begun.
std::vector<Row> photoRows(Cameras& cameras, MediaFolder& folder, Worker& worker, std::chrono::milliseconds timeLimit);

}  // namespace zel::gateway
