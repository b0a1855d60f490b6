#include "outputs/libav_sink.h"

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "outputs/mp4_boxes.h"
#include "outputs/mp4_sink.h"
#include "tests/outputs/read_back.h"
#include "tests/outputs/test_film.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class LibavSinkTest : public testing::Test {
 protected:
  LibavSinkTest() { av_log_set_level(AV_LOG_QUIET); }

  std::string path(const std::string& name) const { return folder.file(name); }
  static OutputAddress address(const std::string& text) { return parseOutputAddress(text).value(); }

  Fault writeAll(Sink& sink) const {
    if (Fault fault = sink.open(film.headers)) return fault;
    for (const MediaPacket& packet : film.packets) {
      if (Fault fault = sink.write(packet)) return fault;
    }
    return std::nullopt;
  }
  Fault writeFile(const std::string& name) const {
    LibavSink sink(address(path(name)));
    if (Fault fault = writeAll(sink)) return fault;
    return sink.finish();
  }

  // 0, 190, 260, 450, 520 ms and so on.
  static std::int64_t unevenTime(std::size_t number) {
    return static_cast<std::int64_t>(number) * 130'000 + (number % 2 == 1 ? 60'000 : 0);
  }

  static std::vector<std::uint8_t> bytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

  const TestFilm film{25};  // 2.5 seconds, a key picture each second; 100 frames of sound
  const test::TemporaryFolder folder;
};

TEST_F(LibavSinkTest, WritesEveryKindOfFile) {
  for (const char* name : {"a.mp4", "a.ts", "a.flv", "a.m3u8"}) {
    ASSERT_EQ(writeFile(name), std::nullopt) << name;
    const ReadBack read = readBack(path(name));
    EXPECT_EQ(read.pictures, 25) << name;
    EXPECT_EQ(read.audioFrames, 100) << name;
    EXPECT_TRUE(read.ordered) << name;
  }
}

TEST_F(LibavSinkTest, AnMp4FilePlaysWhereverItEnds) {
  Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
  ASSERT_EQ(writeAll(sink), std::nullopt);
  const ReadBack read = readBack(path("a.mp4"));  // nothing has finished it
  EXPECT_GE(read.pictures, 20);
  EXPECT_TRUE(read.spherical);
}

// Each fragment's own description is put down in one piece, in front of its media.
TEST_F(LibavSinkTest, AnMp4FileThatIsCutWithinItsMediaPlays) {
  Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
  ASSERT_EQ(writeAll(sink), std::nullopt);
  const std::vector<std::uint8_t> whole = bytesOf(path("a.mp4"));
  const auto boxes = boxesIn(whole, 0, whole.size());
  ASSERT_TRUE(boxes);
  ASSERT_GE(boxes->size(), 6u);  // type, description, and two fragments of two boxes
  const Mp4Box second = (*boxes)[5];
  ASSERT_EQ(second.type, boxType("mdat"));
  std::vector<std::size_t> ends = {(*boxes)[3].end};
  for (std::size_t end = second.begin; end <= second.end; end += 7) ends.push_back(end);
  for (const std::size_t end : ends) {
    std::ofstream(path("cut.mp4"), std::ios::binary)
        .write(reinterpret_cast<const char*>(whole.data()), static_cast<std::streamsize>(end));
    EXPECT_GE(readBack(path("cut.mp4")).pictures, 10) << end;
  }
}

TEST_F(LibavSinkTest, AFinishedMp4FileIsPlainAndBeginsWithItsDescription) {
  Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
  ASSERT_EQ(writeAll(sink), std::nullopt);
  ASSERT_EQ(sink.finish(), std::nullopt);
  const std::vector<std::uint8_t> bytes = bytesOf(path("a.mp4"));
  const auto boxes = boxesIn(bytes, 0, bytes.size());
  ASSERT_TRUE(boxes);
  std::string order;
  for (const Mp4Box& box : *boxes) {
    for (int shift = 24; shift >= 0; shift -= 8) order += static_cast<char>(box.type >> shift & 0xFF);
    order += ' ';
  }
  EXPECT_EQ(order, "ftyp moov free mdat ");
  const ReadBack read = readBack(path("a.mp4"));
  EXPECT_EQ(read.pictures, 25);
  EXPECT_EQ(read.audioFrames, 100);
  EXPECT_TRUE(read.spherical);
  EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr("<GSpherical:Spherical>true"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()),
            1);  // nothing is left beside it
}

TEST_F(LibavSinkTest, WhatIsNotSphericalSaysNothingOfIt) {
  StreamHeaders headers = film.headers;
  headers.spherical = false;
  Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
  ASSERT_EQ(sink.open(headers), std::nullopt);
  for (const MediaPacket& packet : film.packets) ASSERT_EQ(sink.write(packet), std::nullopt);
  ASSERT_EQ(sink.finish(), std::nullopt);
  EXPECT_FALSE(readBack(path("a.mp4")).spherical);
  const std::vector<std::uint8_t> bytes = bytesOf(path("a.mp4"));
  EXPECT_THAT(std::string(bytes.begin(), bytes.end()), testing::Not(HasSubstr("GSpherical")));
}

// A box of 19 bytes: nclx, three numbers of two bytes, and the range in the highest bit of the last byte.
TEST_F(LibavSinkTest, AnMp4FileTellsTheColoursInItsDescription) {
  using namespace std::string_literals;
  struct Row {
    VideoColour colour;
    std::string box;
  };
  for (const Row& row : {Row{{true, 6, 6, 6},
                             "\0\0\0\x13"
                             "colrnclx\0\6\0\6\0\6\x80"s},
                         Row{{false, 6, 6, 6},
                             "\0\0\0\x13"
                             "colrnclx\0\6\0\6\0\6\0"s},
                         Row{{false, 1, 13, 1},
                             "\0\0\0\x13"
                             "colrnclx\0\1\0\x0D\0\1\0"s},
                         Row{{true, 9, 16, 9},
                             "\0\0\0\x13"
                             "colrnclx\0\x09\0\x10\0\x09\x80"s}}) {
    StreamHeaders headers = film.headers;
    headers.colour = row.colour;
    for (const bool finished : {false, true}) {
      Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
      ASSERT_EQ(sink.open(headers), std::nullopt);
      for (const MediaPacket& packet : film.packets) ASSERT_EQ(sink.write(packet), std::nullopt);
      ASSERT_EQ(finished ? sink.finish() : std::nullopt, std::nullopt);
      const std::vector<std::uint8_t> bytes = bytesOf(path("a.mp4"));
      EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr(row.box)) << finished;
    }
  }
}

// They come 1.5 s after their sound, for longer than it waits: a second of sound ends the first fragment behind the
// picture of 450 ms, with none in sight that would tell that picture's length, which is not that of the one before.
TEST_F(LibavSinkTest, PicturesThatComeUnevenlyKeepTheirTimesInAnMp4File) {
  std::vector<MediaPacket> packets = film.packets;
  std::vector<double> wanted;
  for (MediaPacket& packet : packets) {
    if (packet.track != Track::video) continue;
    packet.time = unevenTime(wanted.size());
    wanted.push_back(static_cast<double>(packet.time) / 1e6);
  }
  std::ranges::stable_sort(packets, {}, [](const MediaPacket& packet) {
    return packet.time + (packet.track == Track::video ? 1'500'000 : 0);
  });
  for (const bool finished : {false, true}) {
    Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
    ASSERT_EQ(sink.open(film.headers), std::nullopt);
    for (const MediaPacket& packet : packets) ASSERT_EQ(sink.write(packet), std::nullopt);
    ASSERT_EQ(finished ? sink.finish() : std::nullopt, std::nullopt);
    std::vector<double> times = readBack(path("a.mp4")).pictureTimes;
    EXPECT_GE(times.size(), finished ? 25u : 10u);
    times.resize(wanted.size(), 0);
    std::size_t same = 0;
    while (same < times.size() && std::abs(times[same] - wanted[same]) < 0.0001) ++same;
    EXPECT_GE(same, finished ? 25u : 10u);
  }
}

TEST_F(LibavSinkTest, SoundThatBeginsLaterDoesSoInTheFile) {
  for (const bool finished : {false, true}) {
    Mp4Sink sink(address(path("a.mp4")), [](const std::string&) {});
    ASSERT_EQ(sink.open(film.headers), std::nullopt);
    for (MediaPacket packet : film.packets) {
      if (packet.track == Track::audio) packet.time += 320'000;
      ASSERT_EQ(sink.write(packet), std::nullopt);
    }
    ASSERT_EQ(finished ? sink.finish() : std::nullopt, std::nullopt);
    const ReadBack read = readBack(path("a.mp4"));
    EXPECT_NEAR(read.firstPicture, 0, 0.001) << finished;
    EXPECT_NEAR(read.firstSound, 0.32, 0.001) << finished;
  }
}

TEST_F(LibavSinkTest, AFolderThatIsNotThereIsNamed) {
  for (const char* name : {"no/a.mp4", "no/a.ts", "no/a.flv", "no/a.m3u8"}) {
    const Fault fault = writeFile(name);
    ASSERT_TRUE(fault) << name;
    EXPECT_EQ(*fault, "cannot write " + path(name) + ": No such file or directory");
  }
}

TEST_F(LibavSinkTest, AFullDiskIsTold) {
  for (const char* name : {"a.mp4", "a.ts", "a.flv"}) {
    fs::create_symlink("/dev/full", path(name));
    const Fault fault = writeFile(name);
    ASSERT_TRUE(fault) << name;
    EXPECT_EQ(*fault, "cannot write " + path(name) + ": No space left on device");
  }
}

TEST_F(LibavSinkTest, AFolderOrAPipeIsNoFile) {
  fs::create_directory(path("a.mp4"));
  EXPECT_EQ(writeFile("a.mp4"), "cannot write " + path("a.mp4") + ": it is no plain file");
}

TEST_F(LibavSinkTest, APathMayLookLikeAProtocol) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  LibavSink sink(address("tcp:a.ts"));
  EXPECT_EQ(writeAll(sink), std::nullopt);
  EXPECT_EQ(sink.finish(), std::nullopt);
  fs::current_path(before);
  EXPECT_EQ(readBack(path("tcp:a.ts")).pictures, 25);
}

// -- servers

class ListeningSocket {
 public:
  ListeningSocket() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof any;
    ::bind(socket_, reinterpret_cast<sockaddr*>(&any), size);
    ::listen(socket_, 1);
    ::getsockname(socket_, reinterpret_cast<sockaddr*>(&any), &size);
    port_ = ntohs(any.sin_port);
  }
  ~ListeningSocket() { ::close(socket_); }
  int port() const { return port_; }

 private:
  int socket_;
  int port_ = 0;
};

TEST_F(LibavSinkTest, AServerThatIsNotThereIsTold) {
  int port = 0;
  { port = ListeningSocket().port(); }
  LibavSink sink(address("rtmp://127.0.0.1:" + std::to_string(port) + "/live/secret"));
  const Fault fault = sink.open(film.headers);
  ASSERT_TRUE(fault);
  EXPECT_EQ(*fault, "rtmp://127.0.0.1:" + std::to_string(port) + ": the server cannot be reached: Connection refused");
}

TEST_F(LibavSinkTest, AServerThatNeverAnswersIsNotWaitedForLong) {
  const ListeningSocket silent;
  LibavSink sink(address("rtmp://127.0.0.1:" + std::to_string(silent.port()) + "/live/key"), 0.2);
  const Fault fault = sink.open(film.headers);
  ASSERT_TRUE(fault);
  EXPECT_THAT(*fault, HasSubstr(": the server did not answer within 0.2 s"));
}

TEST_F(LibavSinkTest, AWaitForAServerCanBeEnded) {
  const ListeningSocket silent;
  LibavSink sink(address("rtmp://127.0.0.1:" + std::to_string(silent.port()) + "/live/key"), 3600);
  sink.endWithin(0.1);
  const Fault fault = sink.open(film.headers);
  ASSERT_TRUE(fault);
  EXPECT_THAT(*fault, HasSubstr(": stopped before it was done"));
}

}  // namespace
}  // namespace zel
