#include "tests/bindings/gstreamer/plugin_test.h"

namespace zel::test {
namespace {

using testing::UnorderedElementsAre;

class DevicesTest : public PluginTest {
 protected:
  DevicesTest() : monitor_(gst_device_monitor_new()) {
    gst_device_monitor_add_filter(monitor_.get(), "Video/Source", nullptr);
  }
  ~DevicesTest() override { gst_device_monitor_stop(monitor_.get()); }

  static std::string serial(GstDevice* device) {
    const Own<GstStructure> properties(gst_device_get_properties(device));
    const gchar* const text = properties ? gst_structure_get_string(properties.get(), "device.serial") : nullptr;
    return text != nullptr ? text : "";
  }
  std::vector<std::string> serials() {
    GList* const devices = gst_device_monitor_get_devices(monitor_.get());
    std::vector<std::string> found;
    for (GList* one = devices; one != nullptr; one = one->next) found.push_back(serial(GST_DEVICE(one->data)));
    g_list_free_full(devices, gst_object_unref);
    return found;
  }
  Own<GstMessage> next(GstMessageType type) {
    const Own<GstBus> bus(gst_device_monitor_get_bus(monitor_.get()));
    return Own<GstMessage>(gst_bus_timed_pop_filtered(bus.get(), kLongest, type));
  }

  const Own<GstDeviceMonitor> monitor_;
};

TEST_F(DevicesTest, CamerasAreListed) {
  attach();
  attach({}, "E1A0002");
  EXPECT_THAT(serials(), UnorderedElementsAre("E1A0001", "E1A0002"));
  ASSERT_TRUE(gst_device_monitor_start(monitor_.get()));
  EXPECT_THAT(serials(), UnorderedElementsAre("E1A0001", "E1A0002"));
}

TEST_F(DevicesTest, CamerasThatComeAndGoAreTold) {
  attach();
  ASSERT_TRUE(gst_device_monitor_start(monitor_.get()));
  ASSERT_TRUE(next(GST_MESSAGE_DEVICE_ADDED));
  camera().unplug();
  const auto removed = next(GST_MESSAGE_DEVICE_REMOVED);
  ASSERT_TRUE(removed);
  GstDevice* device = nullptr;
  gst_message_parse_device_removed(removed.get(), &device);
  const Own<GstDevice> gone(device);
  EXPECT_EQ(serial(device), "E1A0001");
  EXPECT_TRUE(serials().empty());
  camera().plug();
  ASSERT_TRUE(next(GST_MESSAGE_DEVICE_ADDED));
  EXPECT_EQ(serials(), std::vector<std::string>{"E1A0001"});
}

TEST_F(DevicesTest, AFolderThatCannotBeUsedHidesNoOtherDevices) {
  setenv("ZEL_ACCESSORIES", "/dev/null/bus", 1);
  EXPECT_TRUE(gst_device_monitor_start(monitor_.get()));
  EXPECT_TRUE(serials().empty());
}

TEST_F(DevicesTest, ADeviceMakesAnElementForItsCamera) {
  attach();
  attach({}, "E1A0002");
  ASSERT_TRUE(gst_device_monitor_start(monitor_.get()));
  GList* const devices = gst_device_monitor_get_devices(monitor_.get());
  for (GList* one = devices; one != nullptr; one = one->next) {
    const Own<GstElement> made(
        GST_ELEMENT(gst_object_ref_sink(gst_device_create_element(GST_DEVICE(one->data), nullptr))));
    gchar* number = nullptr;
    g_object_get(made.get(), "serial-number", &number, nullptr);
    EXPECT_EQ(std::string(number), serial(GST_DEVICE(one->data)));
    g_free(number);
  }
  EXPECT_EQ(g_list_length(devices), 2u);
  g_list_free_full(devices, gst_object_unref);
}

}  // namespace
}  // namespace zel::test
