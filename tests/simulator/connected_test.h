#pragma once

#include <gmock/gmock.h>

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "simulator/camera_simulator.h"
#include "tests/simulator/host_socket.h"
#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {

using Frame = HostSocket::Frame;

inline const Bytes kMarker = {0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA};
inline const Bytes kSyncRequest = {0x12, 0,    0,    0,    4,    0,    0x2E, 0x40, 0xAF,
                                   0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA};

// A request without body, and a reply.
inline Bytes ask(std::uint8_t low, std::uint8_t high) { return {8, 0, 0, 0, 4, 0, low, high}; }

inline Frame reply(Bytes codeAndBody) { return {4, std::move(codeAndBody)}; }

// The preview at the resolution code 3, and its stop; the sound's switch.
inline const Bytes kStartPreview = {9, 0, 0, 0, 4, 0, 0x04, 0x00, 3};
inline const Bytes kStopPreview = ask(0x06, 0x00);
inline Bytes soundSwitch(std::uint8_t to) { return {9, 0, 0, 0, 4, 0, 0x0E, 0x00, to}; }

// A simulator on a bus of its own, with a host's end of its wire.
class ConnectedTest : public testing::Test {
 protected:
  // Two seconds of pictures that only look like H.264, and a little sound: what is shown does not matter here.
  ConnectedTest() {
    options.accessoriesFolder = (folder.path() / "bus").string();
    options.video = (folder.path() / "video.h264").string();
    options.audio = (folder.path() / "audio.aac").string();
    std::ofstream video(options.video, std::ios::binary);
    for (int picture = 0; picture < 60; ++picture)
      video << std::string("\0\0\0\1", 4) << (picture % 30 == 0 ? '\x65' : '\x41') << std::string(20'000, '\x9A');
    std::ofstream(options.audio, std::ios::binary) << "\xFF\xF1\x4C\x80\x01\x1F\xFC\x21";
  }

  void start(std::vector<std::string> faults = {}) {
    std::string error;
    for (const auto& fault : faults) ASSERT_TRUE(options.faults.add(fault, error)) << error;
    options.storage = (folder.path() / "storage").string();
    simulator = std::make_unique<CameraSimulator>(options);
    ASSERT_TRUE(simulator->start(error)) << error;
    const auto content = contentOf(simulator->accessoryFile());
    ASSERT_TRUE(content.has_value());
    path = nlohmann::json::parse(*content)["endpoint"]["path"];
    host = std::make_unique<HostSocket>(path);
  }

  // Until the reply that follows the marker has been read.
  void synchronise() {
    host->send(kSyncRequest);
    const auto marker = host->waitFor(kMarker);
    ASSERT_TRUE(marker.has_value());
    host->drop(*marker + kMarker.size());
    EXPECT_EQ(host->frame(), reply({0x2E, 0xC0, 1}));
  }

  Frame answerTo(const Bytes& request) {
    host->send(request);
    return host->frame();
  }

  TemporaryFolder folder;
  SimulatorOptions options;
  std::unique_ptr<CameraSimulator> simulator;
  std::unique_ptr<HostSocket> host;
  std::string path;
};

}  // namespace zel::simulator
