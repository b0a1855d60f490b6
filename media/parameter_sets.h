#pragma once

#include <memory>

#include "media/nal_unit.h"

namespace zel {

// The first valid SPS and PPS of a stream, without start code. Copies share the bytes.
class ParameterSets {
 public:
  // Stores a copy of the unit's parameter set, unless one is stored already or the header is invalid.
  void offerSps(ByteView unit) { offer(unit, sps_); }
  void offerPps(ByteView unit) { offer(unit, pps_); }

  bool areComplete() const { return sps_ && pps_; }
  // The bytes; empty without such a set.
  ByteView sps() const { return sps_ ? ByteView(*sps_) : ByteView(); }
  ByteView pps() const { return pps_ ? ByteView(*pps_) : ByteView(); }

  // Whether both share their bytes with the other object's, not just equal them.
  bool areThoseOf(const ParameterSets& other) const { return sps_ == other.sps_ && pps_ == other.pps_; }

 private:
  using Set = std::shared_ptr<const Bytes>;

  static void offer(ByteView unit, Set& set) {
    if (set || unit.size() <= kNalHeaderAt || !isValidParameterSetHeader(unit[kNalHeaderAt])) return;
    set = std::make_shared<const Bytes>(unit.begin() + kNalHeaderAt, unit.end());
  }

  Set sps_, pps_;
};

}  // namespace zel
