#include "platform/linux/linux_accessory_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/platform/linux/bus_fixture.h"

namespace zel::platform {
namespace {

using test::accessoryJson;
using test::unixEndpoint;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using LinuxAccessoryManagerTest = test::BusFixture;

TEST_F(LinuxAccessoryManagerTest, ListsByConnectionIdentifierAndThenByFileName) {
  plug("c", 2);
  plug("a", 10);
  folder_.place("z.json", accessoryJson(3, unixEndpoint("/z"), "of z"));
  folder_.place("b.json", accessoryJson(3, unixEndpoint("/b"), "of b"));
  EXPECT_THAT(listed(), ElementsAre(2, 3, 3, 10));
  EXPECT_EQ(manager().connectedAccessories()[1]->description().name, "of b");
}

TEST_F(LinuxAccessoryManagerTest, TellsTheFoundationVersionFromWhichDockTypesAreTold) {
  plug("a", 1);
  EXPECT_EQ(manager().connectedAccessories()[0]->foundationVersion(), 1240.1);
}

TEST_F(LinuxAccessoryManagerTest, OnlyNameDotJsonIsAnAccessory) {
  folder_.place(".hidden.json", accessoryJson(1, unixEndpoint("/x")));
  folder_.place("a.txt", accessoryJson(2, unixEndpoint("/x")));
  folder_.place("b.json~", accessoryJson(3, unixEndpoint("/x")));
  folder_.place(".json", accessoryJson(4, unixEndpoint("/x")));
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_THAT(warnings_.now(), IsEmpty());
}

TEST_F(LinuxAccessoryManagerTest, OneAttachmentIsOneObject) {
  plug("a", 1);
  const auto first = manager().connectedAccessories();
  EXPECT_EQ(manager().connectedAccessories(), first);
  manager().registerForLocalNotifications();
  EXPECT_EQ(manager().connectedAccessories(), first);
  unplug("a");
  EXPECT_THAT(heardAtLeast(1), ElementsAre("-1"));
  EXPECT_EQ(accessories_, first);
}

TEST_F(LinuxAccessoryManagerTest, AnnouncesWhatComesAndGoes) {
  manager().registerForLocalNotifications();
  plug("a", 1);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
  EXPECT_THAT(listed(), ElementsAre(1));
  unplug("a");
  EXPECT_THAT(heardAtLeast(2), ElementsAre("+1", "-1"));
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_FALSE(accessories_[0]->isConnected());
}

TEST_F(LinuxAccessoryManagerTest, RenamingAwayIsADeparture) {
  plug("a", 1);
  manager().registerForLocalNotifications();
  std::filesystem::rename(folder_.file("a.json"), folder_.file("a.gone"));
  EXPECT_THAT(heardAtLeast(1), ElementsAre("-1"));
}

TEST_F(LinuxAccessoryManagerTest, WhatIsThereAtTheRegistrationIsNotAnnounced) {
  plug("a", 1);
  manager().registerForLocalNotifications();
  plug("b", 2);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+2"));
  EXPECT_THAT(listed(), ElementsAre(1, 2));
}

TEST_F(LinuxAccessoryManagerTest, WhatChangesBetweenTheListingAndTheRegistrationIsAnnouncedOnce) {
  plug("a", 1);
  EXPECT_THAT(listed(), ElementsAre(1));
  unplug("a");
  plug("c", 3);
  plug("b", 5);
  manager().registerForLocalNotifications();
  EXPECT_THAT(heardAtLeast(3), ElementsAre("-1", "+3", "+5"));
}

TEST_F(LinuxAccessoryManagerTest, ListingAfterTheRegistrationTakesThePlaceOfTheAnnouncement) {
  EXPECT_THAT(listed(), IsEmpty());
  plug("a", 1);
  manager().registerForLocalNotifications();
  EXPECT_THAT(listed(), ElementsAre(1));
  plug("b", 2);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+2"));
}

TEST_F(LinuxAccessoryManagerTest, ListingWhileRegisteredHoldsWhatHasBeenAnnounced) {
  manager().registerForLocalNotifications();
  plug("a", 1);
  EXPECT_THAT(listed(), IsEmpty()) << "its announcement is still to come";
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
  EXPECT_THAT(listed(), ElementsAre(1));
}

TEST_F(LinuxAccessoryManagerTest, ReplacedFileIsADepartureAndAnArrival) {
  plug("a", 1);
  manager().registerForLocalNotifications();
  const auto before = manager().connectedAccessories();
  plug("a", 1);
  EXPECT_THAT(heardAtLeast(2), ElementsAre("-1", "+1"));
  EXPECT_FALSE(before[0]->isConnected());
  EXPECT_TRUE(accessories_[1]->isConnected());
  EXPECT_NE(accessories_[1], before[0]);
}

TEST_F(LinuxAccessoryManagerTest, FileWrittenInPlaceCountsOnceItIsClosed) {
  manager().registerForLocalNotifications();
  std::ofstream file(folder_.file("a.json"));
  const std::string text = accessoryJson(1, unixEndpoint("/x"));
  file << text.substr(0, 50) << std::flush;
  settle();
  EXPECT_THAT(warnings_.now(), IsEmpty());
  file << text.substr(50);
  file.close();
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
}

TEST_F(LinuxAccessoryManagerTest, ClosingAnUnchangedFileChangesNothing) {
  plug("a", 1);
  manager().registerForLocalNotifications();
  std::ofstream(folder_.file("a.json"), std::ios::app).close();
  plug("b", 2);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+2"));
}

TEST_F(LinuxAccessoryManagerTest, RegistrationsAreCounted) {
  manager().unregisterForLocalNotifications();  // once too often does nothing
  manager().registerForLocalNotifications();
  manager().registerForLocalNotifications();
  manager().unregisterForLocalNotifications();
  plug("a", 1);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
  manager().unregisterForLocalNotifications();
  plug("b", 2);
  settle();
  EXPECT_THAT(heard_, ElementsAre("+1"));
}

TEST_F(LinuxAccessoryManagerTest, NothingIsPostedOnceAnObserverHasUnregistered) {
  plug("a", 1);
  plug("b", 2);
  manager().registerForLocalNotifications();
  onHeard_ = [this] { manager().unregisterForLocalNotifications(); };
  unplug("a");
  unplug("b");
  EXPECT_THAT(heardAtLeast(1), SizeIs(1));
}

TEST_F(LinuxAccessoryManagerTest, RegistrationAfterAPauseAnnouncesWhatTheHostDoesNotKnow) {
  manager().registerForLocalNotifications();
  manager().unregisterForLocalNotifications();
  plug("a", 1);
  manager().registerForLocalNotifications();
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
}

TEST_F(LinuxAccessoryManagerTest, DepartureShowsOnTheObjectThoughNobodyListens) {
  plug("a", 1);
  const auto accessory = manager().connectedAccessories()[0];
  EXPECT_TRUE(accessory->isConnected());
  unplug("a");
  EXPECT_FALSE(accessory->isConnected());
}

TEST_F(LinuxAccessoryManagerTest, MalformedFileIsSkippedWithOneWarningUntilItChanges) {
  folder_.place("a.json", "{}");
  plug("b", 2);
  EXPECT_THAT(listed(), ElementsAre(2));
  EXPECT_THAT(listed(), ElementsAre(2));
  manager().registerForLocalNotifications();
  settle();
  const std::string warning = "accessory file " + folder_.file("a.json") + " skipped: \"connectionID\" is missing";
  EXPECT_THAT(warnings_.now(), ElementsAre(warning));
  folder_.place("a.json", "[]");
  EXPECT_TRUE(runUntil([&] { return warnings_.now().size() == 2; }));
  plug("a", 1);
  EXPECT_THAT(heardAtLeast(1), ElementsAre("+1"));
}

TEST_F(LinuxAccessoryManagerTest, WhatIsNotAPlainFileIsSkippedWithAWarning) {
  folder_.write("plain.txt", accessoryJson(1, unixEndpoint("/x")));
  ASSERT_EQ(symlink(folder_.file("plain.txt").c_str(), folder_.file("a.json").c_str()), 0);
  ASSERT_EQ(mkdir(folder_.file("b.json").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo(folder_.file("c.json").c_str(), 0600), 0);
  folder_.write("d.json", std::string(65537, ' '));
  EXPECT_THAT(listed(), IsEmpty());
  const auto warnings = warnings_.now();
  ASSERT_THAT(warnings, SizeIs(4));
  EXPECT_THAT(warnings[0], HasSubstr("a.json skipped: is a symbolic link"));
  EXPECT_THAT(warnings[1], HasSubstr("b.json skipped: is not a plain file"));
  EXPECT_THAT(warnings[2], HasSubstr("c.json skipped: is not a plain file"));
  EXPECT_THAT(warnings[3], HasSubstr("d.json skipped: is larger than 65536 bytes"));
}

TEST_F(LinuxAccessoryManagerTest, FolderThatGoesTakesEveryAccessoryAlongWithOneWarning) {
  plug("a", 1);
  plug("b", 2);
  manager().registerForLocalNotifications();
  std::filesystem::rename(folder_.path(), folder_.path() + ".away");
  EXPECT_THAT(heardAtLeast(2), ElementsAre("-1", "-2"));
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_THAT(warnings_.now(), ElementsAre(HasSubstr("is gone")));
  std::filesystem::rename(folder_.path() + ".away", folder_.path());
}

TEST_F(LinuxAccessoryManagerTest, RemovedFolderIsMadeAnewByTheNextRegistration) {
  plug("a", 1);
  manager().registerForLocalNotifications();
  std::filesystem::remove_all(folder_.path());
  EXPECT_THAT(heardAtLeast(1), ElementsAre("-1"));
  EXPECT_TRUE(runUntil([&] { return warnings_.now().size() == 1; }));
  manager().unregisterForLocalNotifications();
  manager().registerForLocalNotifications();
  plug("b", 2);
  EXPECT_THAT(heardAtLeast(2), ElementsAre("-1", "+2"));
}

TEST_F(LinuxAccessoryManagerTest, LostChangesAreFoundByLookingAtTheWholeFolder) {
  std::ifstream limitFile("/proc/sys/fs/inotify/max_queued_events");
  int limit = 0;
  ASSERT_TRUE(limitFile >> limit);
  if (limit > 100000) GTEST_SKIP() << "the kernel queues too many changes to lose one";
  plug("old", 1);
  manager().registerForLocalNotifications();
  for (int change = 0; change <= limit / 2; ++change) {
    std::filesystem::rename(folder_.file("old.json"), folder_.file("old.away"));
    std::filesystem::rename(folder_.file("old.away"), folder_.file("old.json"));
  }
  unplug("old");
  plug("new", 2);
  EXPECT_THAT(heardAtLeast(2), ElementsAre("-1", "+2"));
}

TEST_F(LinuxAccessoryManagerTest, SessionIsRefusedForAnAccessoryThatHasLeft) {
  const auto listener = test::listenAt(folder_.file("a.sock"));
  plug("a", 1);
  const auto accessory = manager().connectedAccessories()[0];
  EXPECT_NE(manager().openSession(accessory, "com.zelcam.ucd"), nullptr);
  std::filesystem::create_hard_link(folder_.file("a.json"), folder_.file("kept"));  // its node is not given away again
  unplug("a");
  EXPECT_EQ(manager().openSession(accessory, "com.zelcam.ucd"), nullptr);
  plug("a", 1);
  EXPECT_EQ(manager().openSession(accessory, "com.zelcam.ucd"), nullptr) << "another attachment";
  EXPECT_EQ(manager().openSession(nullptr, "com.zelcam.ucd"), nullptr);
}

TEST_F(LinuxAccessoryManagerTest, SessionIsRefusedForAProtocolThatIsNotOffered) {
  const auto listener = test::listenAt(folder_.file("a.sock"));
  plug("a", 1);
  EXPECT_EQ(manager().openSession(manager().connectedAccessories()[0], "com.zelcam"), nullptr);
}

TEST_F(LinuxAccessoryManagerTest, AccessoryThatCannotBeConnectedIsRefusedAndReportedOnce) {
  plug("a", 1);
  const auto accessory = manager().connectedAccessories()[0];
  EXPECT_EQ(manager().openSession(accessory, "com.zelcam.ucd"), nullptr);
  EXPECT_EQ(manager().openSession(accessory, "com.zelcam.ucd"), nullptr);
  EXPECT_THAT(warnings_.now(),
              ElementsAre("accessory file " + folder_.file("a.json") + " cannot connect: unix socket " +
                          folder_.file("a.sock") + ": No such file or directory"));
}

TEST_F(LinuxAccessoryManagerTest, TwoHundredPlugsLeaveNoDescriptorAndNoThread) {
  const auto listener = test::listenAt(folder_.file("a.sock"), 300);
  manager().registerForLocalNotifications();
  std::size_t descriptors = 0, threads = 0;
  for (int round = 0; round <= 200; ++round) {
    settle();
    if (round == 1) {  // the camera's lock is kept from its first session on
      descriptors = test::descriptorCount();
      threads = test::threadCount();
    }
    heard_.clear();
    accessories_.clear();
    plug("a", 1);
    ASSERT_THAT(heardAtLeast(1), ElementsAre("+1"));
    auto session = manager().openSession(accessories_[0], "com.zelcam.ucd");
    ASSERT_NE(session, nullptr);
    const auto thread = ports().threads.start("session thread", {.begin =
                                                                     [&](RunLoop& loop) {
                                                                       session->inputStream().scheduleInRunLoop(loop);
                                                                       session->inputStream().open();
                                                                     },
                                                                 .end = [&] { session.reset(); }});
    UniqueDescriptor(accept(listener.get(), nullptr, nullptr)).reset();
    unplug("a");
    ASSERT_THAT(heardAtLeast(2), ElementsAre("+1", "-1"));
  }
  EXPECT_EQ(test::descriptorCount(), descriptors);
  EXPECT_TRUE(test::eventually([&] { return test::threadCount() <= threads; }));
}

TEST_F(LinuxAccessoryManagerTest, TwoHundredRegistrationsLeaveNoDescriptor) {
  manager().registerForLocalNotifications();  // the main run loop begins to wait for descriptors
  manager().unregisterForLocalNotifications();
  settle();
  const std::size_t descriptors = test::descriptorCount();
  for (int round = 0; round < 200; ++round) {
    manager().registerForLocalNotifications();
    settle();
    manager().unregisterForLocalNotifications();
    settle();
  }
  EXPECT_EQ(test::descriptorCount(), descriptors);
}

}  // namespace
}  // namespace zel::platform
