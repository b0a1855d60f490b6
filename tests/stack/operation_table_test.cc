#include <ZELTarkaSDK/Operations.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/command/command_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Value = ZELMessageFields::Value;
using Done = Operation::Done;

const Operation& operationOf(std::string_view name) { return *findOperation(name); }

std::vector<std::string> parametersOf(std::string_view name) {
  std::vector<std::string> names;
  for (const auto& parameter : operationOf(name).parameters) names.emplace_back(parameter.name);
  return names;
}

TEST(OperationsTest, AreNinetySixAndBearNamesOfTheirOwn) {
  std::set<std::string_view> names;
  for (const Operation& operation : operations()) names.insert(operation.name);
  EXPECT_EQ(operations().size(), 96u);
  EXPECT_EQ(names.size(), 96u);
}

TEST(OperationsTest, AreFoundByTheirNames) {
  EXPECT_EQ(operationOf("msgReqSetWBMode").name, "msgReqSetWBMode");
  EXPECT_EQ(findOperation("msgReqSetWBmode"), nullptr);
}

TEST(OperationsTest, NameTheirParametersButTheHandlers) {
  EXPECT_THAT(parametersOf("newMsgCmdShutterAEBWithGps"),
              ElementsAre("gps", "gyro", "orientation", "aebInfo", "jsonData"));
  EXPECT_THAT(parametersOf("msgReqSetMediaOffset"), ElementsAre("type", "typeInfo", "offset"));
  EXPECT_THAT(parametersOf("msgReqGetUUIDWithRebackBlock"), IsEmpty());
}

TEST(OperationsTest, TellTheTypesOfTheirParameters) {
  const auto& parameters = operationOf("msgReqCreateTxtFile").parameters;
  EXPECT_TRUE(std::holds_alternative<std::string>(parameters[0].type));
  EXPECT_TRUE(std::holds_alternative<std::int32_t>(parameters[1].type));
  EXPECT_TRUE(std::holds_alternative<ZELData>(parameters[2].type));
  EXPECT_TRUE(std::holds_alternative<ZELGpsData>(operationOf("newMsgReqUpdateGps").parameters[0].type));
}

TEST(OperationsTest, TellTheKeysOfTheirReplies) {
  EXPECT_THAT(operationOf("msgReqGetCardStateWithRebackBlock").resultKeys,
              ElementsAre("ucharValue", "uint64Value", "uint64Value2"));
  EXPECT_THAT(operationOf("msgCmdShutterWithGps").resultKeys, ElementsAre("fileTime", "FileSize", "fileName"));
  EXPECT_THAT(operationOf("msgReqSetWBMode").resultKeys, IsEmpty());
  EXPECT_THAT(operationOf("msgReqSendSyncData").resultKeys, IsEmpty());
}

TEST(OperationsTest, TellWhenTheyAreDone) {
  EXPECT_EQ(operationOf("msgReqSetWBMode").done, Done::answered);
  EXPECT_EQ(operationOf("sendFileWithType").done, Done::answered);
  EXPECT_EQ(operationOf("newMsgReqUpdateGyro").done, Done::written);
  EXPECT_EQ(operationOf("msgReqUpdateOrientation").done, Done::called);
  EXPECT_EQ(operationOf("msgCmdShutterHDRWithGps").done, Done::called);
}

class CalledOperationTest : public CommandTest {
 protected:
  void call(std::string_view name, const std::vector<Operation::Value>& arguments = {}) {
    operationOf(name).call(stack, arguments, [this](const auto& error, const auto& values) {
      ++calls;
      code = error ? error->code : 0;
      results = values;
    });
  }
  void answerWith(std::string_view codeAndBody) {
    answer(codeAndBody);
    host.runUntilIdle();
  }

  int calls = 0, code = -1;
  std::vector<Operation::Value> results;
};

TEST_F(CalledOperationTest, SendsItsArguments) {
  call("msgReqSetStillPMode", {Value(std::uint8_t{2}), Value(std::uint8_t{3})});
  EXPECT_EQ(written(), hex("0A000000 0400 1840 02 03"));
}

TEST_F(CalledOperationTest, TakesAWrongOrMissingArgumentForZero) {
  call("msgReqSetStillPMode", {Value(std::int32_t{2})});
  EXPECT_EQ(written(), hex("0A000000 0400 1840 00 00"));
}

TEST_F(CalledOperationTest, MakesTheMediaLibrarysObjectsOfRecords) {
  call("newMsgReqUpdateGps", {Value(ZELGpsData{1.0, -2.0, 0.5})});
  EXPECT_EQ(written(), hex("20000000 0400 0A40 000000000000F03F 00000000000000C0 000000000000E03F"));
  call("newMsgReqUpdateGyro", {Value(ZELGyroData{1.f, 2.f, 3.f, 4.f, 5.f, 6.f})});
  EXPECT_EQ(written(), hex("20000000 0400 1140 0000803F 00000040 00004040 00008040 0000A040 0000C040"));
}

TEST_F(CalledOperationTest, HandsOnTheReplysValues) {
  call("msgReqGetCardStateWithRebackBlock");
  answerWith("0EC0 01 0200000000000000 0300000000000000");
  EXPECT_EQ(code, 0);
  EXPECT_THAT(results, ElementsAre(Value(std::uint8_t{1}), Value(std::uint64_t{2}), Value(std::uint64_t{3})));
}

TEST_F(CalledOperationTest, HandsOnTextThatIsNotThereAsAbsent) {
  call("msgReqGetSerialNumber");
  answerWith("12C0 01 FF");
  EXPECT_EQ(code, 0);
  EXPECT_THAT(results, ElementsAre(std::nullopt));
}

TEST_F(CalledOperationTest, HasNoValuesWhereItIsRefused) {
  call("msgReqGetFlickerWithRebackBlock");
  answerWith("24C0 00");
  EXPECT_EQ(code, 101);
  EXPECT_THAT(results, IsEmpty());
}

TEST_F(CalledOperationTest, HasATextFilesCodeEvenWhereItIsRefused) {
  call("msgReqCreateTxtFile", {Value(std::string("a.txt")), Value(std::int32_t{0}), std::nullopt});
  answerWith("2DC0 00 09");
  EXPECT_EQ(code, 101);
  EXPECT_THAT(results, ElementsAre(Value(std::int32_t{9})));
}

TEST_F(CalledOperationTest, NeedsNoHandler) {
  operationOf("msgReqGetFlickerWithRebackBlock").call(stack, {}, nullptr);
  EXPECT_EQ(written(), hex("08000000 0400 2440"));
  answerWith("24C0 01 02");
}

TEST_F(CalledOperationTest, ReachesTheManagersQuestionsToo) {
  call("queryCameraBattery");
  answerWith("01C0 03 28");
  EXPECT_THAT(results, ElementsAre(Value(std::int32_t{0}), Value(std::int32_t{40})));
}

}  // namespace
}  // namespace zel::test
