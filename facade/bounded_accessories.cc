#include "facade/bounded_accessories.h"

#include <utility>

namespace zel {
namespace {

class BoundedInput final : public platform::ForwardingInputStream {
 public:
  BoundedInput(platform::InputStream& wrapped, std::shared_ptr<const ReadingBound> bound)
      : ForwardingInputStream(wrapped), bound_(std::move(bound)) {}

  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
    if (!bound_->isReached()) return ForwardingInputStream::read(buffer);
    wrapped().close();  // an open one would tell of its bytes again and again
    return 0;
  }

 private:
  const std::shared_ptr<const ReadingBound> bound_;
};

class BoundedSession final : public platform::ForwardingAccessorySession {
 public:
  BoundedSession(std::unique_ptr<platform::AccessorySession> wrapped, std::shared_ptr<const ReadingBound> bound)
      : ForwardingAccessorySession(std::move(wrapped)),
        input_(ForwardingAccessorySession::inputStream(), std::move(bound)) {}

  platform::InputStream& inputStream() override { return input_; }

 private:
  BoundedInput input_;
};

}  // namespace

std::unique_ptr<platform::AccessorySession> BoundedAccessories::openSession(
    const std::shared_ptr<platform::Accessory>& accessory, std::string_view protocol) {
  auto session = ForwardingAccessoryManager::openSession(accessory, protocol);
  return session ? std::make_unique<BoundedSession>(std::move(session), bound_) : nullptr;
}

}  // namespace zel
