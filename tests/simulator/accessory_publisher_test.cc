#include "simulator/accessory_publisher.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {
namespace {

using nlohmann::json;

class AccessoryPublisherTest : public testing::Test {
 protected:
  std::string bus() const { return (folder.path() / "bus").string(); }

  static json read(const AccessoryPublisher& publisher) {
    const auto content = contentOf(publisher.file());
    return content ? json::parse(*content) : json();
  }

  TemporaryFolder folder;
};

TEST_F(AccessoryPublisherTest, WritesEveryFieldOfTheAccessory) {
  AccessoryPublisher publisher(bus(), {"My camera", "E1A0042", 189});
  ASSERT_TRUE(publisher.publish("/tmp/x.sock")) << publisher.error();
  json accessory = read(publisher);
  EXPECT_TRUE(accessory["connectionID"].is_number_unsigned());
  accessory.erase("connectionID");
  EXPECT_EQ(accessory, json::parse(R"({"manufacturer": "Example", "name": "My camera", "modelNumber": "E1",
      "serialNumber": "E1A0042", "firmwareRevision": "E1_2.0.1_189", "hardwareRevision": "1.0",
      "protocolStrings": ["com.zelcam.ucd"], "dockType": "usb", "endpoint": {"type": "unix", "path": "/tmp/x.sock"}})"));
}

TEST_F(AccessoryPublisherTest, LeavesNothingBesideTheFile) {
  AccessoryPublisher publisher(bus(), {});
  ASSERT_TRUE(publisher.publish("/tmp/x.sock"));
  EXPECT_EQ(entriesIn(bus()), 1u);
  publisher.withdraw();
  EXPECT_EQ(entriesIn(bus()), 0u);
}

TEST_F(AccessoryPublisherTest, WithdrawsWhenItEnds) {
  { AccessoryPublisher(bus(), {}).publish("/tmp/x.sock"); }
  EXPECT_EQ(entriesIn(bus()), 0u);
}

TEST_F(AccessoryPublisherTest, ChoosesANewIdentifierEachTime) {
  AccessoryPublisher publisher(bus(), {});
  ASSERT_TRUE(publisher.publish("/tmp/x.sock"));
  const json first = read(publisher)["connectionID"];
  ASSERT_TRUE(publisher.publish("/tmp/x.sock"));
  EXPECT_NE(read(publisher)["connectionID"], first);
}

TEST_F(AccessoryPublisherTest, DoesNotTakeAnothersPlace) {
  AccessoryPublisher first(bus(), {}), second(bus(), {});
  ASSERT_TRUE(first.publish("/tmp/x.sock"));
  EXPECT_FALSE(second.publish("/tmp/y.sock"));
  EXPECT_EQ(second.error(), "a camera E1A0001 is attached already, by another simulator; choose another --serial");
  second.withdraw();
  EXPECT_EQ(read(first)["endpoint"]["path"], "/tmp/x.sock");
  first.withdraw();
  EXPECT_TRUE(second.publish("/tmp/y.sock")) << second.error();
}

TEST_F(AccessoryPublisherTest, TakesThePlaceOfAFileThatWasLeftBehind) {
  AccessoryPublisher publisher(bus(), {});
  std::ofstream(publisher.file()) << "{}";
  ASSERT_TRUE(publisher.publish("/tmp/x.sock")) << publisher.error();
  EXPECT_EQ(read(publisher)["serialNumber"], "E1A0001");
}

TEST_F(AccessoryPublisherTest, KeepsTheFileInTheFolderWhateverTheSerialNumber) {
  AccessoryPublisher publisher(bus(), {"Camera", "../a/b\n", 192});
  ASSERT_TRUE(publisher.publish("/tmp/x.sock"));
  EXPECT_EQ(publisher.file(), bus() + "/___a_b_.json");
  EXPECT_EQ(read(publisher)["serialNumber"], "../a/b\n");
}

TEST_F(AccessoryPublisherTest, RefusesAFolderThatOthersCanWrite) {
  std::filesystem::create_directory(bus());
  ASSERT_EQ(chmod(bus().c_str(), 0777), 0);
  const AccessoryPublisher publisher(bus(), {});
  EXPECT_FALSE(publisher.ok());
  EXPECT_THAT(publisher.error(), testing::HasSubstr(bus()));
}

}  // namespace
}  // namespace zel::simulator
