#pragma once

#include <vector>

#include "gateway/api/row.h"
#include "gateway/cameras/cameras.h"

namespace zel::gateway {

// What grows until its reader goes: a camera's events, and its pictures and sound in two forms.
//
// cameras: must outlive the rows.
std::vector<Row> streamRows(Cameras& cameras);

}  // namespace zel::gateway
