#include "simulator/uploads.h"

#include "tests/simulator/camera_test.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UploadsTest : public CameraTest {
 protected:
  // A file as the host's frame has it behind the data type.
  void upload(const std::string& path, const Bytes& content) {
    camera->take(host, {joined({7, 0, 0, 0}, joined(textField(path, 64), content))});
    world.work();
  }

  static Bytes answer(const std::string& path, std::uint8_t status) {
    return joined({76, 0, 0, 0, 9, 0, 0, 0, 2, 0, status, 0}, textField(path, 64));
  }
};

TEST_F(UploadsTest, WritesTheFileByteForByteAndAnswersItsPath) {
  Bytes content(100'000);
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<std::uint8_t>(i * i);
  upload("photos/a.jpg", content);
  EXPECT_EQ(contentOf(folder.path() / "photos/a.jpg"), content);
  EXPECT_THAT(host->frames, ElementsAre(answer("photos/a.jpg", 0)));
}

TEST_F(UploadsTest, TakesAnEmptyFile) {
  upload("empty", {});
  EXPECT_EQ(contentOf(folder.path() / "empty"), Bytes{});
  EXPECT_THAT(host->frames, ElementsAre(answer("empty", 0)));
}

TEST_F(UploadsTest, TakesAPathThatFillsItsField) {
  const std::string path(64, 'x');
  upload(path, {1});
  EXPECT_EQ(contentOf(folder.path() / path), Bytes{1});
  EXPECT_THAT(host->frames, ElementsAre(answer(path, 0)));
}

TEST_F(UploadsTest, AnswersWhenTheFileIsWrittenAndNotBefore) {
  camera->take(host, {joined({7, 0, 0, 0}, joined(textField("a", 64), {1}))});
  EXPECT_THAT(host->frames, IsEmpty());
  world.work();
  EXPECT_THAT(host->frames, ElementsAre(answer("a", 0)));
}

TEST_F(UploadsTest, RefusesPathsThatCannotBeUsed) {
  for (const char* path : {"", "/etc/passwd", "../x", "a/../../x", "a//b", "a/", "a\nb"}) {
    host->frames.clear();
    upload(path, {1});
    EXPECT_THAT(host->frames, ElementsAre(answer(path, 1))) << path;
  }
  EXPECT_EQ(entriesIn(folder.path()), 0u);
}

TEST_F(UploadsTest, RepeatsWhateverStandsBehindThePathsEnd) {
  Bytes path = textField("a", 64);
  path[63] = 0xEE;
  camera->take(host, {joined({7, 0, 0, 0}, joined(path, {1}))});
  world.work();
  ASSERT_THAT(host->frames, SizeIs(1));
  EXPECT_EQ(host->frames[0][12 + 63], 0xEE);
  EXPECT_EQ(contentOf(folder.path() / "a"), Bytes{1});
}

TEST_F(UploadsTest, DropsAFrameThatIsTooShortForItsHeader) {
  camera->take(host, {Bytes(67, 'a')});
  world.work();
  EXPECT_THAT(host->frames, IsEmpty());
}

TEST_F(UploadsTest, TakesTheCardsRoomForFilesThatAreWritten) {
  CameraStart start;
  start.cardSize = 100;
  makeCamera(start);
  upload("a", Bytes(60));
  upload("b", Bytes(41));
  upload("../c", Bytes(40));
  upload("d", Bytes(40));
  EXPECT_THAT(host->frames, ElementsAre(answer("a", 0), answer("b", 1), answer("../c", 1), answer("d", 0)));
}

TEST_F(UploadsTest, RefusesFilesThatComeFasterThanTheyAreWritten) {
  const HostFile empty{joined({7, 0, 0, 0}, textField("a", 64))};
  for (int i = 0; i < 512 * 1024 * 1024 / 4096; ++i) camera->take(host, empty);
  EXPECT_THAT(host->frames, IsEmpty());
  camera->take(host, empty);
  EXPECT_THAT(host->frames, ElementsAre(answer("a", 1)));
}

TEST_F(UploadsTest, RefusesEveryFileWhereThatIsTheFault) {
  faults.uploadFail = true;
  upload("a", {1});
  EXPECT_THAT(host->frames, ElementsAre(answer("a", 1)));
  EXPECT_EQ(entriesIn(folder.path()), 0u);
}

TEST_F(UploadsTest, SendsRepliesOfOtherKindsFirstWhereThatIsTheFault) {
  faults.fileKinds = true;
  upload("a", {1});
  const auto failed = [](std::uint8_t low, std::uint8_t high) {
    return joined({76, 0, 0, 0, 9, 0, 0, 0, low, high, 1, 0}, textField("a", 64));
  };
  EXPECT_THAT(host->frames,
              ElementsAre(failed(0, 0), failed(1, 0), failed(3, 0), failed(2, 1), failed(0xFF, 0xFF), answer("a", 0)));
}

TEST_F(UploadsTest, NamesAnotherPathWhereThatIsTheFault) {
  faults.unmatchedPaths = true;
  upload("a", {1});
  upload("../b", {1});
  EXPECT_THAT(host->frames, ElementsAre(answer("nobody/sent/this", 0), answer("nobody/sent/this", 1)));
  EXPECT_EQ(contentOf(folder.path() / "a"), Bytes{1});
}

}  // namespace
}  // namespace zel::simulator
