#include "tests/live/faulty_ports.h"

#include "tests/allocation_fault.h"

namespace zel::test {

// Streams whose events enter the core, and whose operations leave it.
class FaultyStreams final : public platform::ForwardingAccessorySession {
 public:
  FaultyStreams(std::unique_ptr<platform::AccessorySession> wrapped, const FaultyPorts::Escapes& escapes)
      : ForwardingAccessorySession(std::move(wrapped)),
        input_(ForwardingAccessorySession::inputStream(), escapes),
        output_(ForwardingAccessorySession::outputStream(), escapes) {}

  platform::InputStream& inputStream() override { return input_; }
  platform::OutputStream& outputStream() override { return output_; }

 private:
  template <class Base>
  class Faulty : public Base {
   public:
    template <class Port>
    Faulty(Port& wrapped, FaultyPorts::Escapes escapes) : Base(wrapped), escapes_(std::move(escapes)) {}

    void setDelegate(std::weak_ptr<platform::StreamDelegate> delegate) override {
      FaultyPorts::takeMemory();
      FaultyPorts::outside([&] { Base::setDelegate(std::move(delegate)); });
    }
    void scheduleInRunLoop(platform::RunLoop& runLoop) override {
      FaultyPorts::takeMemory();
      FaultyPorts::outside([&] { Base::scheduleInRunLoop(platformsOwn(runLoop)); });
    }
    void removeFromRunLoop(platform::RunLoop& runLoop) override {
      FaultyPorts::outside([&] { Base::removeFromRunLoop(platformsOwn(runLoop)); });
    }
    void open() override {
      FaultyPorts::takeMemory();
      FaultyPorts::outside([&] { Base::open(); });
    }
    void close() override {
      FaultyPorts::outside([&] { Base::close(); });
    }

   protected:
    void deliver(platform::StreamDelegate& delegate, platform::StreamEvent event) override {
      FaultyPorts::inside(escapes_, [&] { Base::deliver(delegate, event); });
    }

   private:
    static platform::RunLoop& platformsOwn(platform::RunLoop& runLoop) {
      return static_cast<FaultyPorts::FaultyLoop&>(runLoop).wrapped;
    }

    const FaultyPorts::Escapes escapes_;
  };

  class Input final : public Faulty<platform::ForwardingInputStream> {
   public:
    using Faulty::Faulty;
    std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
      return FaultyPorts::outside([&] { return ForwardingInputStream::read(buffer); });
    }
  };

  class Output final : public Faulty<platform::ForwardingOutputStream> {
   public:
    using Faulty::Faulty;
    std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override {
      return FaultyPorts::outside([&] { return ForwardingOutputStream::write(bytes); });
    }
  };

  Input input_;
  Output output_;
};

FaultyPorts::FaultyPorts(const platform::Ports& wrapped)
    : clock_(wrapped.clock),
      threads_(wrapped.threads, escaped_),
      queues_(wrapped.queues, escaped_),
      accessories_(wrapped.accessories, escaped_),
      notifications_(wrapped.notifications, escaped_) {}

std::unique_ptr<platform::Thread> FaultyPorts::FaultyThreads::start(std::string name, platform::ThreadBody body) {
  takeMemory();
  const FaultyCode platform(false);
  auto started =
      wrapped.start(std::move(name), {.begin =
                                          [this, begin = std::move(body.begin)](platform::RunLoop& loop) {
                                            FaultyLoop& own = loopOf(loop);
                                            inside(escapes, [&] { begin(own); });
                                          },
                                      .end = [kept = escapes, end = std::move(body.end)] { inside(kept, end); }});
  FaultyLoop& own = loopOf(started->runLoop());
  return std::make_unique<FaultyThread>(std::move(started), loops.at(&own.wrapped));
}

std::unique_ptr<platform::AccessorySession> FaultyPorts::FaultyAccessories::openSession(
    const std::shared_ptr<platform::Accessory>& accessory, std::string_view protocol) {
  takeMemory();
  const FaultyCode platform(false);
  auto session = ForwardingAccessoryManager::openSession(accessory, protocol);
  return session ? std::make_unique<FaultyStreams>(std::move(session), escapes) : nullptr;
}

}  // namespace zel::test
