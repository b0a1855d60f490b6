#pragma once

// All public headers.

#include <ZELTarkaSDK/CameraInUse.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/PreviewConsumer.h>
#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/Version.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/WireNumber.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraAccessoryDelegate.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELExtraJsonInfo.h>
#include <ZELTarkaSDK/ZELHDRShutter.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>
#include <ZELTarkaSDK/ZELLiveMediaData.h>
#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOffset.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/ZELRenderView.h>
#include <ZELTarkaSDK/ZELThumbnailRender.h>
#include <ZELTarkaSDK/platform/export.h>

#include <ZELTarkaSDK/platform/application_events.h>
#include <ZELTarkaSDK/platform/ports.h>
