// A preview that the camera does not have.

#include <ZELTarkaSDK/PreviewFormat.h>

#if FAULT == 0
constexpr std::uint8_t kCode = zel::previewCode({2560, 1280, 25});
#elif FAULT == 1
constexpr std::uint8_t kCode = zel::previewCode({2560, 1280, 24});
#endif
static_assert(kCode == 10);
