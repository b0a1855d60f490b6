#include <limits>
#include <map>

#include "platform/simulated/simulated_platform.h"
#include "tests/platform/harness.h"

namespace zel::test {
namespace {

class SimulatedFarEnd final : public FarEnd {
 public:
  explicit SimulatedFarEnd(platform::ScriptedLink& link) : link_(link) {}

  void send(const Bytes& bytes) override { link_.send(bytes); }
  Bytes received() override { return link_.written(); }
  void stall() override { link_.setWriteCapacity(1000); }
  void resume() override { link_.setWriteCapacity(std::numeric_limits<std::size_t>::max()); }
  void close() override { link_.end(); }
  void breakLink() override { link_.failReads(); }

 private:
  platform::ScriptedLink& link_;
};

class SimulatedHarness final : public Harness {
 public:
  explicit SimulatedHarness(std::uint64_t seed) : host_(seed) {}

  const platform::Ports& ports() override { return host_.ports(); }

  bool runUntil(const std::function<bool()>& condition) override {
    host_.runUntilIdle();
    for (int step = 0; step < kSteps && !condition(); ++step) host_.advance(kStep);
    return condition();
  }

  void plug(const platform::AccessoryDescription& description) override {
    accessories_[description.connectionID] = host_.plug(description);
  }
  void unplug(std::uint64_t connectionID) override { host_.unplug(accessories_.at(connectionID)); }

  Connection connect(std::uint64_t connectionID) override {
    const auto& accessory = accessories_.at(connectionID);
    auto session = host_.ports().accessories.openSession(accessory, kProtocol);
    return {std::move(session), std::make_unique<SimulatedFarEnd>(*accessory->current())};
  }

 private:
  // Ten virtual seconds.
  static constexpr double kStep = 0.001;
  static constexpr int kSteps = 10'000;

  platform::SimulatedPlatform host_;
  std::map<std::uint64_t, std::shared_ptr<platform::ScriptedAccessory>> accessories_;
};

}  // namespace

std::unique_ptr<Harness> makeSimulatedHarness(std::uint64_t seed) { return std::make_unique<SimulatedHarness>(seed); }

}  // namespace zel::test
