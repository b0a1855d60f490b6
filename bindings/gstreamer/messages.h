#pragma once

#include <ZELTarkaSDK/Result.h>
#include <gst/gst.h>

#include <string>

namespace zel::gst {

// Messages of the element on its bus. Why a camera gave nothing becomes the framework's own code for it.
//
// Thread: any thread.
void postError(GstElement& element, const CameraError& why);
void postWarning(GstElement& element, const CameraError& why);
void postWarning(GstElement& element, const std::string& words);
void postInfo(GstElement& element, const std::string& words);

}  // namespace zel::gst
