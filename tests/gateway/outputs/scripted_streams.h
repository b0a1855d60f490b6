#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gateway/outputs/output_streams.h"

namespace zel::gateway {

// What has become of the streams that were begun.
struct ScriptedWorld {
  std::vector<std::optional<StitchedSize>> begun;
  int running = 0;
  std::optional<std::string> failure;
};

class ScriptedStream final : public OutputStream {
 public:
  explicit ScriptedStream(ScriptedWorld& world) : world_(world) { ++world_.running; }
  ~ScriptedStream() override { --world_.running; }

  Result<int> addOutput(const std::string& address) override {
    OutputReport report;
    report.id = ++newest_;
    report.name = address;
    report.state = OutputState::writing;
    reports_[report.id] = report;
    return report.id;
  }
  Result<OutputReport> removeOutput(int id) override {
    OutputReport report = reports_.at(id);
    reports_.erase(id);
    report.state = OutputState::finished;
    return report;
  }
  std::vector<OutputReport> outputs() const override {
    std::vector<OutputReport> all;
    for (const auto& [id, report] : reports_) all.push_back(report);
    return all;
  }
  std::optional<std::string> failure() const override { return world_.failure; }

 private:
  ScriptedWorld& world_;
  std::map<int, OutputReport> reports_;
  int newest_ = 0;
};

class ScriptedStreams final : public OutputStreams {
 public:
  explicit ScriptedStreams(ScriptedWorld& world) : world_(world) {}
  Result<std::unique_ptr<OutputStream>> begin(const std::optional<StitchedSize>& stitched) override {
    world_.begun.push_back(stitched);
    return std::unique_ptr<OutputStream>(std::make_unique<ScriptedStream>(world_));
  }

 private:
  ScriptedWorld& world_;
};

}  // namespace zel::gateway
