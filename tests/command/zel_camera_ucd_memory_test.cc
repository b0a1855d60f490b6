// Requests of a host where memory ends: each allocation of each kind of request fails, one a round. A program of its
// own, because that replaces the allocator.

#include <functional>
#include <new>

#include <ZELTarkaSDK/ZELMessageKeys.h>

#include "tests/allocation_fault.h"
#include "tests/command/command_test.h"

namespace zel::test {
namespace {

class ZELCameraUCDMemoryTest : public CommandTest {
 protected:
  using Request = std::function<void(ZELCameraUCD& ucd)>;

  // Makes the request with its first allocation failing, then with its second, until there are no more, and answers
  // each time. What the platform's queues take for a task counts too. Returns how many failed.
  int failEach(const Request& request, std::string_view reply) {
    int failed = 0;
    for (bool struck = true; struck; ++failed) {
      handler = photo = {};
      const std::uint64_t lostBefore = stack.statistics().lostForMemory;
      struck = makeFailing(failed + 1, request);
      host.runUntilIdle();
      answer(reply);
      const auto lost = static_cast<int>(stack.statistics().lostForMemory - lostBefore);
      EXPECT_EQ(handler.calls + lost, 1) << "allocation " << failed + 1;
      EXPECT_TRUE(handler.text.starts_with("ok") || handler.text.starts_with("error 101") || lost == 1) << handler.text;
    }
    written();
    return failed - 1;
  }

  static bool isThrown(const std::function<void()>& call) {
    try {
      call();
      return false;
    } catch (const std::bad_alloc&) {
      return true;
    }
  }

  bool makeFailing(long number, const Request& request) {
    const AllocationFault fault(number);
    EXPECT_FALSE(isThrown([&] {
      const FaultyCode core;
      request(ucd());
    })) << "allocation "
        << number;
    return fault.hasStruck();
  }

  static std::optional<ZELError> errorOf(const std::optional<ZELMessageFields>& reply) {
    return reply ? reply->get<ZELError>(key::nsError) : std::nullopt;
  }

  // Unread, kind 2, status 0, the path.
  static Bytes fileReply(const std::string& path) {
    Bytes frame;
    appendLittleEndian(frame, static_cast<std::uint32_t>(6 + 6 + path.size()));
    const Bytes named(path.begin(), path.end());
    return join(frame, bytes({9, 0, 0, 0, 2, 0, 0, 0}), named);
  }

  Outcome handler, photo;
  // What a host passes, made before anything fails.
  const std::function<void(const std::optional<ZELError>&)> done = handler;
  const std::function<void(const std::optional<ZELError>&, std::uint8_t)> doneWithByte = handler;
  const ZELCameraUCD::CaptureBlock captured = handler;
  const ZELPhotoBlock pictured = photo;
};

TEST_F(ZELCameraUCDMemoryTest, ARequestWithANumberIsAnsweredOrRefused) {
  const int failed = failEach([&](ZELCameraUCD& all) { all.msgReqSetWBMode(2, done); }, "1AC0 01");
  EXPECT_GT(failed, 5);
}

TEST_F(ZELCameraUCDMemoryTest, ARequestWithTextIsAnsweredOrRefused) {
  const std::optional<std::string> name = "a name that is not kept inside of its string";
  failEach([&](ZELCameraUCD& all) { all.msgReqSetSerialNumber(name, done); }, "13C0 01");
}

TEST_F(ZELCameraUCDMemoryTest, ARequestOfAnUncommonFormIsAnsweredOrRefused) {
  failEach([&](ZELCameraUCD& all) { all.msgCmdStartVideoWithVideoRes(6, doneWithByte); }, "0480 01 06");
  const ZELMessageFields fields{{"ucharValue", std::uint8_t{2}}};
  const RebackDic reply = [this](const auto& answered) { handler.take(errorOf(answered)); };
  failEach([&](ZELCameraUCD& all) { all.sendMsg(43, fields, reply); }, "1AC0 01");
}

TEST_F(ZELCameraUCDMemoryTest, ACaptureThatFailsFailsItsPhotoToo) {
  for (long number = 1;; ++number) {
    handler = photo = {};
    const std::uint64_t lostBefore = stack.statistics().lostForMemory;
    const bool struck =
        makeFailing(number, [&](ZELCameraUCD& all) { all.msgCmdShutterWithGps({}, {}, {}, captured, pictured); });
    const bool isSent = written().size() > 8;
    answer("0780 00000000 0000000000000000 00");
    const auto lost = static_cast<int>(stack.statistics().lostForMemory - lostBefore);
    EXPECT_GE(handler.calls + lost, 1) << "allocation " << number;
    EXPECT_TRUE(isSent || photo.calls + lost >= 1) << "allocation " << number;
    if (!struck) break;
  }
}

TEST_F(ZELCameraUCDMemoryTest, AFileIsSentOrRefused) {
  const std::optional<std::string> path = "a/path/that/is/not/kept/inside/of/its/string";
  const ZELData file(bytes({1, 2, 3}));
  const auto request = [&](ZELCameraUCD& all) { all.sendFileWithType(1, path, file, done); };
  for (long number = 1;; ++number) {
    handler = {};
    const std::uint64_t lostBefore = stack.statistics().lostForMemory;
    const bool struck = makeFailing(number, request);
    if (written().size() > 8) send(fileReply(*path));
    host.runUntilIdle();
    EXPECT_EQ(handler.calls + static_cast<int>(stack.statistics().lostForMemory - lostBefore), 1) << number;
    if (!struck) break;
  }
}

TEST_F(ZELCameraUCDMemoryTest, AllThatWaitFailWhereverMemoryEnds) {
  for (long number = 1;; ++number) {
    handler = {};
    const std::uint64_t lostBefore = stack.statistics().lostForMemory;
    ucd().msgReqSetWBMode(2, done);
    ucd().msgReqSetMute(1, done);
    const bool struck = makeFailing(number, [](ZELCameraUCD& all) { all.responseAllReblackBlockWithErrorCode(100); });
    host.runUntilIdle();
    EXPECT_EQ(handler.calls + static_cast<int>(stack.statistics().lostForMemory - lostBefore), 2) << number;
    if (!struck) break;
  }
}

// The capture's own reply has come; only the photo is awaited.
TEST_F(ZELCameraUCDMemoryTest, APhotoThatIsAwaitedFailsWhereverMemoryEnds) {
  for (long number = 1;; ++number) {
    handler = photo = {};
    ucd().msgCmdShutterWithGps({}, {}, {}, captured, pictured);
    answer("0780 00000000 0000000000000000 00");
    ASSERT_EQ(photo.calls, 0);
    const std::uint64_t lostBefore = stack.statistics().lostForMemory;
    const bool struck = makeFailing(number, [](ZELCameraUCD& all) { all.responseAllReblackBlockWithErrorCode(100); });
    host.runUntilIdle();
    EXPECT_EQ(photo.calls + static_cast<int>(stack.statistics().lostForMemory - lostBefore), 1) << number;
    EXPECT_TRUE(photo.calls == 0 || photo.text.starts_with("error 100")) << photo.text;
    if (!struck) break;
  }
}

TEST_F(ZELCameraUCDMemoryTest, AnAnswerThatFindsNoMemoryBecomesARefusal) {
  int refused = 0;
  for (long number = 1;; ++number) {
    handler = {};
    ucd().msgReqSetWBMode(2, done);
    const bool struck = makeFailing(number, [](ZELCameraUCD& all) { all.responseCameraMsg(43, std::nullopt); });
    host.runUntilIdle();
    EXPECT_EQ(handler.calls, 1) << "allocation " << number;
    if (!struck) break;
    EXPECT_EQ(handler.text, "error 101") << "allocation " << number;
    ++refused;
  }
  EXPECT_EQ(handler.text, "ok");
  EXPECT_GT(refused, 0);
}

TEST_F(ZELCameraUCDMemoryTest, ARequestThatNobodyWaitsForIsCountedWhereItIsNotSent) {
  int sent = 0, lost = 0;
  for (long number = 1;; ++number) {
    const std::uint64_t lostBefore = stack.statistics().lostForMemory;
    const bool struck = makeFailing(number, [](ZELCameraUCD& all) { all.msgReqUpdateGps({}); });
    const bool isSent = !written().empty();
    EXPECT_NE(isSent, stack.statistics().lostForMemory != lostBefore) << number;
    ++(isSent ? sent : lost);
    if (!struck) break;
  }
  EXPECT_EQ(sent, 1);
  EXPECT_GT(lost, 0);
}

}  // namespace
}  // namespace zel::test
