#include "simulator/file_records.h"

#include <algorithm>

namespace zel::simulator {
namespace {

constexpr std::size_t kMostRecords = 1000;

}  // namespace

Bytes fileRecord(std::uint64_t size, const Bytes& lensOffset, const Bytes& sensorTriple) {
  Bytes record(8);
  put(record, size);
  add(record, lensOffset);
  add(record, sensorTriple);
  record.resize(kFileRecord);
  return record;
}

void FileRecords::add(const std::string& name, Bytes record) {
  if (records_.size() == kMostRecords) records_.pop_front();
  records_.emplace_back(name, std::move(record));
}

std::optional<Bytes> FileRecords::of(const std::string& name) const {
  const auto found = std::ranges::find(records_, name, &std::pair<std::string, Bytes>::first);
  if (found == records_.end()) return std::nullopt;
  return found->second;
}

}  // namespace zel::simulator
