#include "bindings/gstreamer/devices.h"

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "bindings/gstreamer/caps.h"
#include "bindings/gstreamer/zelcamsrc.h"

namespace zel::gst {
namespace {

// -- A camera

struct ZelCamDevice {
  GstDevice device;
  gchar* serial;
};
struct ZelCamDeviceClass {
  GstDeviceClass device;
};

gpointer deviceParent = nullptr;  // set once, with the class

GstElement* createElement(GstDevice* device, const gchar* name) {
  GstElement* const element = gst_element_factory_make(kElement, name);
  if (element != nullptr) {
    g_object_set(element, "serial-number", reinterpret_cast<ZelCamDevice*>(device)->serial, nullptr);
  }
  return element;
}

void finalizeDevice(GObject* object) {
  g_free(reinterpret_cast<ZelCamDevice*>(object)->serial);
  G_OBJECT_CLASS(deviceParent)->finalize(object);
}

void initDeviceClass(gpointer type, gpointer) {
  deviceParent = g_type_class_peek_parent(type);
  G_OBJECT_CLASS(type)->finalize = finalizeDevice;
  GST_DEVICE_CLASS(type)->create_element = createElement;
}

GType deviceType() {
  static const GType type = g_type_register_static_simple(GST_TYPE_DEVICE, "GstZelCamDevice", sizeof(ZelCamDeviceClass),
                                                          initDeviceClass, sizeof(ZelCamDevice), nullptr, GTypeFlags{});
  return type;
}

// What comes from the bus is text of anybody.
std::string printable(const std::string& text) {
  gchar* const valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
  std::string made = valid;
  g_free(valid);
  return made;
}

GstDevice* newDevice(const platform::AccessoryDescription& camera) {
  const std::string serial = printable(camera.serialNumber), name = printable(camera.name);
  GstCaps* const caps = gst_caps_from_string(kVideoCaps);
  GstStructure* const properties =
      gst_structure_new("zelcam-proplist", "device.api", G_TYPE_STRING, "zelcam", "device.serial", G_TYPE_STRING,
                        serial.c_str(), "device.vendor.name", G_TYPE_STRING, printable(camera.manufacturer).c_str(),
                        "device.product.name", G_TYPE_STRING, printable(camera.modelNumber).c_str(), "zelcam.firmware",
                        G_TYPE_STRING, printable(camera.firmwareRevision).c_str(), nullptr);
  auto* const device = g_object_new(deviceType(), "display-name", (name + " " + serial).c_str(), "caps", caps,
                                    "device-class", "Video/Source", "properties", properties, nullptr);
  static_cast<ZelCamDevice*>(device)->serial = g_strdup(camera.serialNumber.c_str());
  gst_structure_free(properties);
  gst_caps_unref(caps);
  return GST_DEVICE(device);
}

// -- The bus

// Watches the bus, and tells the provider what comes and goes.
class Watch {
 public:
  // Errors: null where the folder cannot be used; the words are in `error`.
  static std::unique_ptr<Watch> begin(GstDeviceProvider& provider, std::string& error) {
    auto platform = LinuxPlatform::create({.warn = [](const std::string&) {}}, error);
    if (!platform) return nullptr;
    try {
      return std::unique_ptr<Watch>(new Watch(provider, std::move(platform)));
    } catch (const std::system_error& fault) {
      error = std::string("no thread can be started to watch the bus: ") + fault.what();
      return nullptr;
    }
  }

  ~Watch() {
    platform_->ports().accessories.unregisterForLocalNotifications();
    connected_.reset();
    disconnected_.reset();
    platform_->stopMainQueue();
    thread_.join();
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  Watch(GstDeviceProvider& provider, std::unique_ptr<LinuxPlatform> platform)
      : provider_(provider), platform_(std::move(platform)) {
    const auto& ports = platform_->ports();
    connected_ =
        ports.notifications.observe(platform::kAccessoryDidConnectNotification, [this](const auto& notification) {
          if (const auto one = notification.accessory(platform::kAccessoryKey)) add(one->description());
        });
    disconnected_ =
        ports.notifications.observe(platform::kAccessoryDidDisconnectNotification, [this](const auto& notification) {
          if (const auto one = notification.accessory(platform::kAccessoryKey)) remove(one->description());
        });
    ports.accessories.registerForLocalNotifications();
    for (const auto& one : ports.accessories.connectedAccessories()) add(one->description());
    thread_ = std::thread([this] { platform_->runMainQueue(); });
  }

  void add(const platform::AccessoryDescription& camera) {
    GstDevice* device = nullptr;
    {
      const std::lock_guard lock(mutex_);
      if (devices_.contains(camera.connectionID)) return;  // it came while those that were there were listed
      devices_[camera.connectionID] = device = newDevice(camera);
    }
    gst_device_provider_device_add(&provider_, device);  // takes the floating reference
  }

  void remove(const platform::AccessoryDescription& camera) {
    GstDevice* device = nullptr;
    {
      const std::lock_guard lock(mutex_);
      const auto found = devices_.find(camera.connectionID);
      if (found == devices_.end()) return;
      device = found->second;
      devices_.erase(found);
    }
    gst_device_provider_device_remove(&provider_, device);
  }

  GstDeviceProvider& provider_;
  const std::unique_ptr<LinuxPlatform> platform_;
  std::unique_ptr<platform::NotificationObservation> connected_, disconnected_;
  std::mutex mutex_;
  std::map<std::uint64_t, GstDevice*> devices_;  // the provider's own, by the number of their connection
  std::thread thread_;
};

// -- The provider

struct ZelCamProvider {
  GstDeviceProvider provider;
  Watch* watch;
};
struct ZelCamProviderClass {
  GstDeviceProviderClass provider;
};

GList* probe(GstDeviceProvider*) {
  std::string error;
  const auto platform = LinuxPlatform::create({.warn = [](const std::string&) {}}, error);
  GList* devices = nullptr;
  if (!platform) return devices;
  for (const auto& one : platform->ports().accessories.connectedAccessories())
    devices = g_list_append(devices, newDevice(one->description()));
  return devices;
}

gboolean startProvider(GstDeviceProvider* provider) {
  std::string error;
  auto watch = Watch::begin(*provider, error);
  if (!watch) {
    GST_WARNING_OBJECT(provider, "%s", error.c_str());
    return FALSE;
  }
  reinterpret_cast<ZelCamProvider*>(provider)->watch = watch.release();
  return TRUE;
}

void stopProvider(GstDeviceProvider* provider) {
  delete std::exchange(reinterpret_cast<ZelCamProvider*>(provider)->watch, nullptr);
}

void initProviderClass(gpointer type, gpointer) {
  GstDeviceProviderClass* const provider = GST_DEVICE_PROVIDER_CLASS(type);
  provider->probe = probe;
  provider->start = startProvider;
  provider->stop = stopProvider;
  gst_device_provider_class_set_static_metadata(provider, "360-degree cameras", "Source/Video",
                                                "Lists the 360-degree cameras on the accessory bus",
                                                "ZELTarkaSDK maintainers <maintainers@zeltarkasdk.invalid>");
}

}  // namespace

bool registerDevices(GstPlugin* plugin) {
  const GType type =
      g_type_register_static_simple(GST_TYPE_DEVICE_PROVIDER, "GstZelCamDeviceProvider", sizeof(ZelCamProviderClass),
                                    initProviderClass, sizeof(ZelCamProvider), nullptr, GTypeFlags{});
  return gst_device_provider_register(plugin, "zelcamdeviceprovider", GST_RANK_PRIMARY, type) != FALSE;
}

}  // namespace zel::gst
