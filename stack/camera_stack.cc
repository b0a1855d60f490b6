#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <atomic>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "capture/zel_ucd_file.h"
#include "link/camera_data_parser.h"
#include "link/camera_session.h"
#include "link/keep_alive.h"
#include "live/live_parts.h"

namespace zel {

// Members are in the order of their dependencies.
struct CameraStack::Graph {
  Graph(const platform::Ports& given, std::string serialNumber)
      : ports(given),
        accessory(ports, parser, std::move(serialNumber)),
        ucdFile(std::make_shared<ZELUCDFile>([this](const ZELData& data) { accessory.writeData(data); },
                                             ports.queues.mainQueue())),
        ucd(accessory, parser, *ucdFile, ports.queues.mainQueue()),
        manager(accessory, ucd, ports.notifications) {
    parser.setUcdFile(ucdFile);
  }
  ~Graph() { ucd.failEverything(); }  // handlers of requests that were sent during destruction
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  const platform::Ports ports;
  CameraDataParser parser;
  ZELCameraAccessory accessory;
  std::shared_ptr<ZELUCDFile> ucdFile;
  ZELCameraUCD ucd;
  ZELCameraManager manager;
  std::atomic<std::int32_t> largestUnit = ReceiveLimits().unit;
};

CameraStack::CameraStack(const platform::Ports& ports, std::string serialNumber)
    : graph_(std::make_shared<Graph>(ports, std::move(serialNumber))) {
  const KeepAlive keepAlive{graph_};
  graph_->accessory.setKeepAlive(keepAlive);
  graph_->ucd.setKeepAlive(keepAlive);
}

// Inside a callback it does not wait for the session thread, which may be waiting for that callback.
CameraStack::~CameraStack() {
  graph_->accessory.closeCamera();
  if (!insideCallback()) graph_->accessory.cameraSession().waitForThreadEnd();
  graph_->ucd.failEverything();
  // Nothing is received for decoding any more. A player that the host still holds would keep its thread.
  if (const auto player = graph_->parser.previewPlayer()) player->resetPlayer();
}

ZELCameraAccessory& CameraStack::accessory() { return graph_->accessory; }
CameraDataParser& CameraStack::parser() { return graph_->parser; }
ZELCameraUCD& CameraStack::ucd() { return graph_->ucd; }
ZELCameraManager& CameraStack::manager() { return graph_->manager; }
const platform::Ports& CameraStack::ports() const { return graph_->ports; }

std::shared_ptr<ZELPreviewPlayer> CameraStack::suitablePreviewPlayer() { return suitablePreviewPlayerOf(graph_); }

std::shared_ptr<ZELPreviewPlayer> CameraStack::suitablePreviewPlayerOf(const std::shared_ptr<Graph>& of) {
  const auto firewareVersion = [weak = std::weak_ptr<Graph>(of)]() -> std::int64_t {
    const auto graph = weak.lock();
    return graph ? graph->accessory.firewareVersion() : 0;
  };
  auto player = ZELPreviewPlayer::create(of->ports, firewareVersion);
  player->setLargestUnit(of->largestUnit.load());
  CameraDataParser& parser = of->parser;
  parser.setPreviewPlayer(player);
  parser.setVideoStreamRes(parser.videoStreamRes());
  return player;
}

void CameraStack::setReceiveLimits(const ReceiveLimits& limits) {
  graph_->parser.setLongestFrame(limits.frame);
  graph_->largestUnit.store(limits.unit);
}

LiveParts CameraStack::liveParts() {
  return {graph_->ports, {graph_, &graph_->ucd}, {graph_, &graph_->parser}, [graph = graph_] {
            return suitablePreviewPlayerOf(graph);
          }};
}

LinkStatistics CameraStack::statistics() const {
  LinkStatistics statistics;
  const CameraSession& session = graph_->accessory.cameraSession();
  graph_->parser.copyStatistics(statistics);
  statistics.bytesWritten = session.bytesWritten();
  statistics.bytesToWrite = session.bytesToWrite();
  statistics.streamErrors = session.streamErrors();
  statistics.resendsLeft = session.syncTimeCount();
  statistics.roundTrip = graph_->accessory.syncRoundTrip();
  statistics.lostForMemory = graph_->ucd.lostForMemory() + graph_->ucdFile->lostForMemory();
  return statistics;
}

}  // namespace zel

ZELLiveDataSource::Source ZELLiveDataSource::initWitCameraResolution(zel::CameraStack& stack, Number resolution,
                                                                     Number stitchWidth, Number stitchHeight,
                                                                     Number bitrate) {
  return initWitCameraResolution(stack.liveParts(), resolution, stitchWidth, stitchHeight, bitrate);
}
