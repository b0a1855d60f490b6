#include <ZELTarkaSDK/Version.h>

const double ZELTarkaSDKVersionNumber = ZEL_VERSION_NUMBER;

const char ZELTarkaSDKVersionString[] = ZEL_VERSION_STRING;
