#pragma once

#include <ZELTarkaSDK/PreviewFormat.h>
