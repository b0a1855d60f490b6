#include "bindings/gstreamer/messages.h"

namespace zel::gst {
namespace {

using Reason = CameraError::Reason;

struct Code {
  GQuark domain;
  gint number;
};

Code codeOf(Reason reason) {
  switch (reason) {
    case Reason::noCamera:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NOT_FOUND};
    case Reason::inUse:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_BUSY};
    case Reason::silent:
    case Reason::timeLimit:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_OPEN_READ};
    case Reason::lost:
    case Reason::closed:
    case Reason::cancelled:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ};
    case Reason::refused:
    case Reason::oldFirmware:
    case Reason::invalid:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_SETTINGS};
    case Reason::media:
      return {GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED};
    case Reason::platform:
      return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_FAILED};
  }
  return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_FAILED};
}

void post(GstElement& element, GstMessageType type, Code code, const std::string& words, const std::string& more) {
  gst_element_message_full(&element, type, code.domain, code.number, g_strdup(words.c_str()),
                           more.empty() ? nullptr : g_strdup(more.c_str()), __FILE__, __func__, __LINE__);
}

std::string detailOf(const CameraError& why) {
  return why.domain.empty() ? std::string() : why.domain + " " + std::to_string(why.code);
}

}  // namespace

void postError(GstElement& element, const CameraError& why) {
  post(element, GST_MESSAGE_ERROR, codeOf(why.reason), why.message, detailOf(why));
}
void postWarning(GstElement& element, const CameraError& why) {
  post(element, GST_MESSAGE_WARNING, codeOf(why.reason), why.message, detailOf(why));
}
void postWarning(GstElement& element, const std::string& words) {
  post(element, GST_MESSAGE_WARNING, {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_FAILED}, words, {});
}
void postInfo(GstElement& element, const std::string& words) {
  post(element, GST_MESSAGE_INFO, {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ}, words, {});
}

}  // namespace zel::gst
