#include "outputs/outputs.h"

#include <algorithm>

#include "outputs/libav_sink.h"
#include "outputs/mp4_sink.h"

namespace zel::app {
namespace {

constexpr double kSecondsToFinish = 5;

OutputRules rulesFor(const OutputAddress& address, const std::function<void(const std::string&)>& tell) {
  OutputRules rules;
  rules.name = address.name();
  rules.tell = tell;
  if (address.isServer()) rules.retry = RetryRules{};
  if (address.isServer() || address.kind == OutputKind::standardOutput) rules.secondsToFinish = kSecondsToFinish;
  rules.makeSink = [address, tell]() -> std::unique_ptr<Sink> {
    if (address.kind == OutputKind::mp4) return std::make_unique<Mp4Sink>(address, tell);
    return std::make_unique<LibavSink>(address);
  };
  return rules;
}

}  // namespace

Outputs::Outputs(std::span<const OutputAddress> addresses, const std::function<void(const std::string&)>& tell) {
  for (const OutputAddress& address : addresses) {
    outputs_.push_back(std::make_unique<Output>(rulesFor(address, tell)));
  }
}

void Outputs::begin(const StreamHeaders& headers) {
  for (const auto& output : outputs_) output->begin(headers);
}

void Outputs::put(const MediaPacket& packet) {
  for (const auto& output : outputs_) output->put(packet);
}

void Outputs::finish() {
  for (const auto& output : outputs_) output->finish();
  for (const auto& output : outputs_) output->join();
}

bool Outputs::haveAllFailed() const {
  return std::ranges::all_of(outputs_, [](const auto& output) { return output->hasFailed(); });
}

std::vector<OutputReport> Outputs::reports() const {
  std::vector<OutputReport> reports;
  for (const auto& output : outputs_) reports.push_back(output->report());
  return reports;
}

}  // namespace zel::app
