#include <ZELTarkaSDK/CameraStack.h>

#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <utility>

#include "command/sync_data_request.h"
#include "platform/ports.h"
#include "transport/camera_data_parser.h"
#include "transport/camera_session.h"

namespace zel {

// Members stand in the order of what they need.
struct CameraStack::Graph {
  Graph(const platform::Ports& ports, std::string serialNumber)
      : parser(ports.clock),
        accessory(ports, parser, std::move(serialNumber)),
        syncDataRequest(parser, accessory, ports.queues.mainQueue()) {
    parser.setSyncDataRequester(&syncDataRequest);
  }

  CameraDataParser parser;
  ZELCameraAccessory accessory;
  SyncDataRequest syncDataRequest;
};

CameraStack::CameraStack(const platform::Ports& ports, std::string serialNumber)
    : graph_(std::make_shared<Graph>(ports, std::move(serialNumber))) {
  graph_->accessory.cameraSession().setKeepAlive(graph_);
}

CameraStack::~CameraStack() {
  graph_->accessory.closeCamera();
  graph_->accessory.cameraSession().waitForThreadEnd();
}

ZELCameraAccessory& CameraStack::accessory() { return graph_->accessory; }
CameraDataParser& CameraStack::parser() { return graph_->parser; }

LinkStatistics CameraStack::statistics() const {
  LinkStatistics statistics;
  const CameraSession& session = graph_->accessory.cameraSession();
  graph_->parser.copyStatistics(statistics);
  statistics.streamErrors = session.streamErrors();
  statistics.resendsLeft = session.syncTimeCount();
  statistics.roundTrip = graph_->accessory.syncRoundTrip();
  return statistics;
}

}  // namespace zel
