#pragma once

#include <ZELTarkaSDK/CameraCaptures.h>
#include <ZELTarkaSDK/Pending.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

class CameraCore;

// The lines of requests in which photos, and uploads, wait for each other. The camera takes one picture or series at a
// time, whatever message asks for it.
inline constexpr std::string_view kCaptureLine = "capture", kUploadLine = "upload";

// Photos, brackets and uploads of a camera object: see Camera.h.
Pending<Photo> takePhoto(const std::shared_ptr<CameraCore>& core, const CaptureOptions& options,
                         const RequestOptions& request);
Pending<PhotoSeries> takeBracket(const std::shared_ptr<CameraCore>& core, const std::vector<std::int8_t>& steps,
                                 const CaptureOptions& options, const RequestOptions& request);
Pending<void> uploadFile(const std::shared_ptr<CameraCore>& core, std::int64_t type, const std::string& path,
                         const ZELData& content, const std::function<void(const TransferProgress&)>& told,
                         const RequestOptions& request);

}  // namespace zel
