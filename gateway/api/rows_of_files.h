#pragma once

#include <vector>

#include "gateway/api/row.h"
#include "gateway/media/media_folder.h"
#include "gateway/media/thumbnails.h"

namespace zel::gateway {

nlohmann::ordered_json fileJson(const MediaFile& file);

// The media folder: its list, its files with ranges and thumbnails, and their removal.
//
// folder, thumbnails: must outlive the rows.
std::vector<Row> fileRows(MediaFolder& folder, Thumbnails& thumbnails);

}  // namespace zel::gateway
