#pragma once

#include <ZELTarkaSDK/platform/export.h>

// The version of the library that the host runs with, which may be newer than the one that it was built with.

// Its first two numbers, 1.2 of 1.2.3. Later versions have larger numbers.
ZEL_EXPORT extern const double ZELTarkaSDKVersionNumber;

// All three of them, as text.
ZEL_EXPORT extern const char ZELTarkaSDKVersionString[];
