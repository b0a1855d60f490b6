#include "bindings/c/failure.h"

#include <ZELTarkaSDK/Version.h>

#include <cstdlib>
#include <utility>

#include "bindings/c/sized.h"
#include "bindings/c/text.h"

namespace zel::c {
namespace {

using Reason = CameraError::Reason;

// The numbers are those of the reasons, one more, since 0 is success.
constexpr zel_status statusAt(Reason reason) { return static_cast<zel_status>(static_cast<int>(reason) + 1); }
static_assert(statusAt(Reason::noCamera) == ZEL_NO_CAMERA && statusAt(Reason::inUse) == ZEL_IN_USE);
static_assert(statusAt(Reason::silent) == ZEL_SILENT && statusAt(Reason::lost) == ZEL_LOST);
static_assert(statusAt(Reason::refused) == ZEL_REFUSED && statusAt(Reason::oldFirmware) == ZEL_OLD_FIRMWARE);
static_assert(statusAt(Reason::timeLimit) == ZEL_TIME_LIMIT && statusAt(Reason::cancelled) == ZEL_CANCELLED);
static_assert(statusAt(Reason::closed) == ZEL_CLOSED && statusAt(Reason::invalid) == ZEL_INVALID);
static_assert(statusAt(Reason::media) == ZEL_MEDIA && statusAt(Reason::platform) == ZEL_PLATFORM);

}  // namespace

void fail(CameraError error) { throw Failure{std::move(error)}; }
void refuse(std::string why) { fail({Reason::invalid, std::move(why)}); }

zel_status statusOf(Reason reason) { return statusAt(reason); }

bool isUsable(const zel_error* error) noexcept { return error == nullptr || isSizeOf<zel_error>(error->size); }

void tell(zel_error* error, zel_status status, std::string_view message, std::string_view domain,
          std::int64_t code) noexcept {
  if (error == nullptr) return;
  zel_error told{};
  told.status = status;
  told.code = code;
  copyText(domain, told.domain);
  copyText(message, told.message);
  give(error, told);
}

zel_status tellFailure(zel_error* error, const CameraError& why) noexcept {
  const zel_status status = statusOf(why.reason);
  tell(error, status, why.message, why.domain, why.code);
  return status;
}

}  // namespace zel::c

const char* zel_status_text(int status) {
  static constexpr const char* kTexts[] = {"done",
                                           "no camera",
                                           "in use",
                                           "the camera sends nothing",
                                           "the link is down",
                                           "refused",
                                           "old firmware",
                                           "no answer in time",
                                           "cancelled",
                                           "closed",
                                           "a wrong call",
                                           "no pictures or sound",
                                           "the system refused"};
  const auto at = static_cast<std::size_t>(status);
  return at < std::size(kTexts) ? kTexts[at] : "unknown";
}

void zel_free(void* memory) { std::free(memory); }
const char* zel_version(void) { return ZELTarkaSDKVersionString; }
