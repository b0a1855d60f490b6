#pragma once

#include <ZELTarkaSDK/platform/export.h>

// The version of the library at run time, which may be newer than the one that the host was built with.

// Its first two numbers, 1.2 of 1.2.3. Later versions have larger numbers.
ZEL_EXPORT extern const double ZELTarkaSDKVersionNumber;

// All three numbers, as text.
ZEL_EXPORT extern const char ZELTarkaSDKVersionString[];
