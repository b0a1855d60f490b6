#include "capture/zel_photo_data_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/simulated/simulated_platform.h"
#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// A photo frame's payload: the name filled up with zeros, and the image.
Bytes payload(std::string_view name, const Bytes& image) {
  Bytes field = text(name);
  field.resize(64);
  return join(field, image);
}

class ZELPhotoDataParserTest : public testing::Test {
 protected:
  ZELPhotoBlock takeSingle() {
    return [this](const auto& failure, const auto& fileName, const auto& data) {
      ++answers;
      error = failure;
      name = fileName;
      image = data;
    };
  }
  ZELPhotoSeriesBlock takeSeries() {
    return [this](const auto& failure, const auto& fileNames, const auto& data) {
      ++answers;
      error = failure;
      names = fileNames;
      images = data;
    };
  }
  auto single() { return ZELPhotoDataParser::initWithShutterBlock(mainQueue(), takeSingle()); }
  auto series(std::int32_t count) {
    return ZELPhotoDataParser::initWithAEBShutterCount(mainQueue(), count, takeSeries());
  }
  platform::Queue& mainQueue() { return host.ports().queues.mainQueue(); }

  platform::SimulatedPlatform host;
  int answers = 0;
  std::optional<ZELError> error;
  std::optional<std::string> name;
  std::optional<ZELData> image;
  std::vector<std::string> names;
  std::shared_ptr<const ZELDataArray> images;
};

// A host's executor, which may call the framework back while a task is handed to it.
struct CallingBack final : platform::Queue {
  void post(platform::Task) override {
    ++posted;
    callBack();
  }
  int posted = 0;
  std::function<void()> callBack;
};

TEST_F(ZELPhotoDataParserTest, HoldsNoLockWhileItHandsItsAnswerOn) {
  CallingBack queue;
  const auto one = ZELPhotoDataParser::initWithShutterBlock(queue, takeSingle());
  queue.callBack = [&] { one->replyBlockWithError({"domain", 1, std::nullopt}); };
  one->parserData(payload("A.JPG", {1}));
  EXPECT_EQ(queue.posted, 1);
  const auto many = ZELPhotoDataParser::initWithAEBShutterCount(queue, 1, takeSeries());
  queue.callBack = [&] { many->parserData(payload("A.JPG", {1})); };
  many->replyBlockWithError({"domain", 1, std::nullopt});
  EXPECT_EQ(queue.posted, 2);
}

TEST_F(ZELPhotoDataParserTest, FailsOnAPayloadOfSixtyFourBytes) {
  const auto parser = single();
  parser->parserData(payload("A.JPG", {}));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(error, (ZELError{"NSOSStatusErrorDomain", 101, std::nullopt}));
  EXPECT_FALSE(name);
  EXPECT_FALSE(image);
}

TEST_F(ZELPhotoDataParserTest, TakesAnImageOfOneByte) {
  const auto parser = single();
  parser->parserData(payload("A.JPG", bytes({0xFF})));
  host.runUntilIdle();
  EXPECT_FALSE(error);
  EXPECT_EQ(name, "A.JPG");
  EXPECT_THAT(image->bytes(), ElementsAre(0xFF));
}

TEST_F(ZELPhotoDataParserTest, CutsANameThatFillsTheFieldToSixtyThreeCharacters) {
  const auto parser = single();
  parser->parserData(payload(std::string(64, 'x'), bytes({1})));
  host.runUntilIdle();
  EXPECT_EQ(name, std::string(63, 'x'));
}

TEST_F(ZELPhotoDataParserTest, GivesNoNameThatIsNotAscii) {
  const auto parser = single();
  parser->parserData(payload("\xC3\xA9.JPG", bytes({1})));
  host.runUntilIdle();
  EXPECT_FALSE(error);
  EXPECT_FALSE(name);
  EXPECT_TRUE(image);
}

TEST_F(ZELPhotoDataParserTest, AnswersOnTheMainQueueAndNotInsideTheCall) {
  const auto parser = single();
  parser->parserData(payload("A.JPG", bytes({1})));
  EXPECT_EQ(answers, 0);
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
}

TEST_F(ZELPhotoDataParserTest, IsSilentAboutASecondPicture) {
  const auto parser = single();
  parser->parserData(payload("A.JPG", bytes({1})));
  parser->parserData(payload("B.JPG", bytes({2})));
  parser->replyBlockWithError(zelOSStatusError(100));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(name, "A.JPG");
}

TEST_F(ZELPhotoDataParserTest, PassesTheCommandsFailureOn) {
  const auto parser = single();
  parser->replyBlockWithError(zelOSStatusError(100));
  parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(error->code, 100);
  EXPECT_FALSE(image);
}

TEST_F(ZELPhotoDataParserTest, PassesTheCommandsFailureOnToASeriesWithoutWhatHadCome) {
  const auto parser = series(3);
  parser->parserData(payload("A.JPG", bytes({1})));
  parser->replyBlockWithError(zelOSStatusError(100));
  parser->replyBlockWithError(zelOSStatusError(101));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(error, (ZELError{"NSOSStatusErrorDomain", 100, std::nullopt}));
  EXPECT_THAT(names, IsEmpty());
  EXPECT_EQ(images, nullptr);
}

TEST_F(ZELPhotoDataParserTest, DoesNothingWithoutAHandler) {
  const auto one = ZELPhotoDataParser::initWithShutterBlock(mainQueue(), nullptr);
  const auto many = ZELPhotoDataParser::initWithAEBShutterCount(mainQueue(), 1, nullptr);
  one->parserData(payload("A.JPG", bytes({1})));
  many->parserData(payload("A.JPG", bytes({1})));
  many->replyBlockWithError(zelOSStatusError(100));
  host.runUntilIdle();
  EXPECT_EQ(answers, 0);
}

TEST_F(ZELPhotoDataParserTest, AnswersASeriesOfThreeAfterTheThird) {
  const auto parser = series(3);
  parser->parserData(payload("A.JPG", bytes({1})));
  parser->parserData(payload("B.JPG", bytes({2})));
  host.runUntilIdle();
  EXPECT_EQ(answers, 0);
  parser->parserData(payload("C.JPG", bytes({3})));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_FALSE(error);
  EXPECT_THAT(names, ElementsAre("A.JPG", "B.JPG", "C.JPG"));
  ASSERT_EQ(images->size(), 3u);
  EXPECT_THAT(images->at(0).bytes(), ElementsAre(1));
  EXPECT_THAT(images->at(2).bytes(), ElementsAre(3));
}

TEST_F(ZELPhotoDataParserTest, EndsASeriesWithAShortPayload) {
  const auto parser = series(3);
  parser->parserData(payload("A.JPG", bytes({1})));
  parser->parserData(payload("B.JPG", {}));
  parser->parserData(payload("C.JPG", bytes({3})));
  parser->parserData(payload("D.JPG", bytes({4})));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(error->code, 101);
  EXPECT_THAT(names, IsEmpty());
  EXPECT_EQ(images, nullptr);
}

TEST_F(ZELPhotoDataParserTest, AnswersASeriesOfNoneAfterTheFirstPicture) {
  const auto parser = series(0);
  parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  EXPECT_THAT(names, ElementsAre("A.JPG"));
}

TEST_F(ZELPhotoDataParserTest, TakesANegativeCountForNone) {
  const auto parser = series(-1);
  parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  EXPECT_THAT(names, ElementsAre("A.JPG"));
}

TEST_F(ZELPhotoDataParserTest, AnswersASeriesOfNoneWithTheErrorOfAShortPayload) {
  const auto parser = series(0);
  parser->parserData(payload("A.JPG", {}));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_EQ(error->code, 101);
}

TEST_F(ZELPhotoDataParserTest, LetsLatePicturesJoinTheSeriesUnannounced) {
  const auto parser = series(1);
  parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  parser->parserData(payload("B.JPG", bytes({2})));
  host.runUntilIdle();
  EXPECT_EQ(answers, 1);
  EXPECT_THAT(names, ElementsAre("A.JPG"));
  EXPECT_EQ(images->size(), 2u);
}

TEST_F(ZELPhotoDataParserTest, KeepsNoMoreThanSixteenLatePictures) {
  const auto parser = series(1);
  for (int picture = 0; picture < 100; ++picture) parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  EXPECT_EQ(images->size(), 17u);
}

TEST_F(ZELPhotoDataParserTest, KeepsNothingOfASeriesThatWasHandedOverAndLetGo) {
  const auto parser = series(1);
  parser->parserData(payload("A.JPG", bytes({1})));
  host.runUntilIdle();
  const std::weak_ptr<const ZELDataArray> handedOver = images;
  images = nullptr;
  EXPECT_TRUE(handedOver.expired());
  parser->parserData(payload("B.JPG", bytes({2})));
  EXPECT_EQ(answers, 1);
}

TEST_F(ZELPhotoDataParserTest, KeepsTheSeriesParallelWhereANameIsNotAscii) {
  const auto parser = series(2);
  parser->parserData(payload("\xFF", bytes({1})));
  parser->parserData(payload("B.JPG", bytes({2})));
  host.runUntilIdle();
  EXPECT_THAT(names, ElementsAre("", "B.JPG"));
}

}  // namespace
}  // namespace zel::test
