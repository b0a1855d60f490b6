#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <ZELTarkaSDK/platform/accessory.h>

#include "base/shared_value.h"
#include "platform/linux/accessory_description.h"
#include "platform/linux/accessory_file.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// One attachment: one file of the bus's folder, from its appearance to its removal or replacement, or to the end of the
// camera's stream, whichever is first.
class LinuxAccessory final : public Accessory {
 public:
  LinuxAccessory(std::string path, const FileIdentity& identity, ParsedAccessory parsed);

  const AccessoryDescription& description() const override { return parsed_.description; }
  bool isConnected() const override;
  double foundationVersion() const override { return 1240.1; }

  const std::string& path() const { return path_; }
  const Endpoint& endpoint() const { return parsed_.endpoint; }
  bool offers(std::string_view protocol) const;

  // The name of its camera's lock: the serial number, else the file's name.
  std::string camera() const;

  // Marks it as detached.
  void depart() { attached_.store(false); }
  // A new attachment of the same file.
  std::shared_ptr<LinuxAccessory> again() const;

  // True the first time only: an attachment that cannot be connected is reported once.
  bool reportsFirstFault() { return !faultReported_.exchange(true); }

  // Counts a session, and returns its number. The end of an earlier session is then ignored.
  std::uint64_t beginSession() { return sessions_.fetch_add(1) + 1; }
  // The number of the last one; 0 before the first.
  std::uint64_t lastSession() const { return sessions_.load(); }

  // A connection made in advance for the next session. Taking it without one gives an empty descriptor.
  void setConnection(UniqueDescriptor connection) { connection_.set(std::move(connection)); }
  UniqueDescriptor takeConnection() { return connection_.set({}); }
  bool hasConnection() {
    return connection_.with([](const UniqueDescriptor& made) { return static_cast<bool>(made); });
  }

  // Whether the last session runs, or ran, through a gateway.
  bool isThroughGateway() const { return throughGateway_.load(); }
  void setThroughGateway(bool through) { throughGateway_.store(through); }

  // Guards against two simultaneous attempts to connect in advance.
  bool beginsTrying() { return !trying_.exchange(true); }
  void endTrying() { trying_.store(false); }

 private:
  const std::string path_;
  const FileIdentity identity_;
  const ParsedAccessory parsed_;
  std::atomic<bool> attached_ = true;
  std::atomic<bool> faultReported_ = false;
  std::atomic<bool> trying_ = false;
  std::atomic<std::uint64_t> sessions_ = 0;
  std::atomic<bool> throughGateway_ = false;

  Guarded<UniqueDescriptor> connection_;
};

}  // namespace zel::platform
