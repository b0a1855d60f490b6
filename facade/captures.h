#pragma once

#include <ZELTarkaSDK/CameraCaptures.h>
#include <ZELTarkaSDK/Pending.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zel {

class CameraCore;

// Photos, brackets and uploads of a camera object: see Camera.h.
Pending<Photo> takePhoto(const std::shared_ptr<CameraCore>& core, const CaptureOptions& options,
                         const RequestOptions& request);
Pending<PhotoSeries> takeBracket(const std::shared_ptr<CameraCore>& core, const std::vector<std::int8_t>& steps,
                                 const CaptureOptions& options, const RequestOptions& request);
Pending<void> uploadFile(const std::shared_ptr<CameraCore>& core, std::int64_t type, const std::string& path,
                         const ZELData& content, const std::function<void(const TransferProgress&)>& told,
                         const RequestOptions& request);

}  // namespace zel
