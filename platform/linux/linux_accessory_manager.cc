#include "platform/linux/linux_accessory_manager.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/linux/accessory_description.h"
#include "platform/linux/accessory_folder.h"
#include "platform/linux/descriptor_session.h"

namespace zel::platform {
namespace {

// The host usually connects on its main thread, which an endpoint that does not answer must not hold for long.
constexpr std::chrono::seconds kConnectLimit{2};

}  // namespace

LinuxAccessoryManager::LinuxAccessoryManager(Settings settings, std::shared_ptr<LinuxRunLoop> mainRunLoop,
                                             NotificationCenter& notifications)
    : settings_(std::move(settings)), mainRunLoop_(std::move(mainRunLoop)), notifications_(notifications) {}

LinuxAccessoryManager::~LinuxAccessoryManager() {
  const MutexLock lock(mutex_);
  if (watch_) watch_->stop();
}

std::vector<std::shared_ptr<Accessory>> LinuxAccessoryManager::connectedAccessories() {
  std::vector<std::shared_ptr<Accessory>> accessories;
  {
    const MutexLock lock(mutex_);
    if (!watch_ || behind_) lookSilently();
    const Shown all = shown();
    accessories.assign(all.begin(), all.end());
  }
  giveWarnings();
  return accessories;
}

void LinuxAccessoryManager::registerForLocalNotifications() {
  {
    const MutexLock lock(mutex_);
    if (registrations_++ == 0) startWatch();
  }
  giveWarnings();
}

// First the watch, then the look: what happens in between is seen twice rather than missed, and told once.
void LinuxAccessoryManager::startWatch() {
  std::string fault;
  if (!prepareAccessoryFolder(settings_.folder, fault)) return warnings_.push_back(fault);
  watch_ = FolderWatch::start(
      *mainRunLoop_, settings_.folder,
      [this](const FolderWatch& watch, const FolderChange& change) { folderChanged(watch, change); }, fault);
  if (!watch_) return warnings_.push_back("accessory folder " + settings_.folder + " cannot be watched: " + fault);
  if (!told_) return lookSilently();
  behind_ = true;
  mainRunLoop_->perform([this, watch = watch_] { announceSince(*watch); });
}

void LinuxAccessoryManager::unregisterForLocalNotifications() {
  std::shared_ptr<FolderWatch> watch;
  const MutexLock lock(mutex_);
  if (registrations_ == 0 || --registrations_ > 0) return;
  watch = std::move(watch_);
  behind_ = false;
  if (watch) watch->stop();
}

void LinuxAccessoryManager::folderChanged(const FolderWatch& watch, const FolderChange& change) {
  if (change.kind == FolderChange::Kind::file) {
    if (isAccessoryName(change.name)) announce(watch, {change.name});
    return;
  }
  std::vector<std::string> names;
  {
    const MutexLock lock(mutex_);
    names = namesToLookAt();
  }
  announce(watch, names);
  if (change.kind == FolderChange::Kind::gone) watchEnded(watch);
}

void LinuxAccessoryManager::announceSince(const FolderWatch& watch) {
  std::vector<std::string> names;
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch || !std::exchange(behind_, false)) return;
    names = namesToLookAt();
  }
  announce(watch, names);
}

void LinuxAccessoryManager::announce(const FolderWatch& watch, const std::vector<std::string>& names) {
  Shown changed;
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;
    changed = takeDepartures(names);
  }
  announce(watch, kAccessoryDidDisconnectNotification, changed);
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;  // an observer has just ended the notifications
    changed = takeArrivals(names);
  }
  giveWarnings();
  announce(watch, kAccessoryDidConnectNotification, changed);
}

void LinuxAccessoryManager::announce(const FolderWatch& watch, std::string_view notification,
                                     const Shown& accessories) {
  for (const auto& accessory : accessories) {
    if (!watchedBy(watch)) return;
    notifications_.post({.name = std::string(notification),
                         .userInfo = {{std::string(kAccessoryKey), std::shared_ptr<Accessory>(accessory)}}});
  }
}

bool LinuxAccessoryManager::watchedBy(const FolderWatch& watch) {
  const MutexLock lock(mutex_);
  return watch_.get() == &watch;
}

void LinuxAccessoryManager::watchEnded(const FolderWatch& watch) {
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;
    watch_ = nullptr;
    warnings_.push_back("accessory folder " + settings_.folder +
                        " is gone; plugging is noticed again once the host has registered anew");
  }
  giveWarnings();
}

void LinuxAccessoryManager::lookSilently() {
  const std::vector<std::string> names = namesToLookAt();
  takeDepartures(names);
  takeArrivals(names);
  told_ = true;
  behind_ = false;
}

std::vector<std::string> LinuxAccessoryManager::namesToLookAt() {
  std::vector<std::string> names = accessoryNames(settings_.folder);
  for (const auto& [name, unused] : known_) names.push_back(name);
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

// Forgets the files that are gone or replaced, and returns the accessories among them.
LinuxAccessoryManager::Shown LinuxAccessoryManager::takeDepartures(const std::vector<std::string>& names) {
  Shown departed;
  for (const std::string& name : names) {
    const auto known = known_.find(name);
    if (known == known_.end() || known->second.file == readAccessoryFile(settings_.folder + "/" + name)) continue;
    if (const auto& accessory = known->second.accessory) {
      accessory->depart();
      departed.push_back(accessory);
    }
    known_.erase(known);
  }
  return departed;
}

// Takes in the files that are not known, and returns the accessories among them in the order of a listing.
LinuxAccessoryManager::Shown LinuxAccessoryManager::takeArrivals(const std::vector<std::string>& names) {
  Shown arrived;
  for (const std::string& name : names) {
    if (known_.contains(name)) continue;
    const std::string path = settings_.folder + "/" + name;
    AccessoryFile file = readAccessoryFile(path);
    if (!file.present) continue;
    const auto accessory = admit(path, file);
    if (accessory) arrived.push_back(accessory);
    known_.emplace(name, Known{std::move(file), accessory});
  }
  const auto byConnection = [](const auto& a, const auto& b) {
    return a->description().connectionID < b->description().connectionID;
  };
  std::stable_sort(arrived.begin(), arrived.end(), byConnection);
  return arrived;
}

std::shared_ptr<LinuxAccessory> LinuxAccessoryManager::admit(const std::string& path, const AccessoryFile& file) {
  std::string fault = file.fault;
  std::optional<ParsedAccessory> parsed;
  if (fault.empty()) parsed = parseAccessoryDescription(file.text, fault);
  if (!parsed) {
    warnings_.push_back("accessory file " + path + " skipped: " + fault);
    return nullptr;
  }
  return std::make_shared<LinuxAccessory>(path, file.identity, std::move(*parsed));
}

LinuxAccessoryManager::Shown LinuxAccessoryManager::shown() {
  Shown all;
  for (const auto& [name, known] : known_) {
    if (known.accessory) all.push_back(known.accessory);
  }
  const auto byConnection = [](const auto& a, const auto& b) {
    return a->description().connectionID < b->description().connectionID;
  };
  std::stable_sort(all.begin(), all.end(), byConnection);
  return all;
}

void LinuxAccessoryManager::giveWarnings() {
  std::vector<std::string> warnings;
  {
    const MutexLock lock(mutex_);
    warnings.swap(warnings_);
  }
  for (const std::string& warning : warnings) settings_.warn(warning);
}

std::unique_ptr<AccessorySession> LinuxAccessoryManager::openSession(const std::shared_ptr<Accessory>& accessory,
                                                                     std::string_view protocol) {
  const auto attached = std::dynamic_pointer_cast<LinuxAccessory>(accessory);
  if (!attached || !attached->isConnected() || !attached->offers(protocol)) return nullptr;
  std::string fault;
  UniqueDescriptor connection = connectEndpoint(attached->endpoint(), kConnectLimit, fault);
  if (connection) return makeDescriptorSession(connection.release());
  if (attached->reportsFirstFault()) settings_.warn("accessory file " + attached->path() + " cannot connect: " + fault);
  return nullptr;
}

}  // namespace zel::platform
