#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "simulator/media/media_faults.h"

namespace zel::simulator {

// Silence for `seconds` after every `every` seconds of sending.
struct Stall {
  double seconds = 3.5;
  double every = 10;
};

// Requests by their codes, or all of them.
struct CodeSet {
  bool all = false;
  std::set<std::uint16_t> codes;

  bool contains(std::uint16_t code) const { return all || codes.contains(code); }
};

// The injected faults.
struct Faults {
  std::size_t garbage = 0;  // bytes before the marker
  bool oneByteWrites = false;
  bool split = false;  // frames written in random pieces
  std::optional<Stall> stall;
  bool unknownTypes = false;
  int lengthZero = 0;               // number of frames with a length of 0
  int length4GiB = 0;               // number of frames with a length of 4 GiB
  std::uint64_t disconnect = 0;     // bytes of a connection after which the camera is unplugged; 0 never
  int storm = 0;                    // how often the camera is unplugged and plugged in right after the start
  int slowSync = 0;                 // milliseconds before a clock reply
  std::set<std::uint16_t> noReply;  // request codes that are never answered
  std::set<std::uint16_t> refuse;   // request codes that are refused
  CodeSet duplicateReply;
  CodeSet shortReply;                      // replies lose their body
  CodeSet highFlags;                       // successful replies have a flag above 1
  CodeSet trailingBytes;                   // replies end with extra bytes
  std::map<std::uint16_t, int> lateReply;  // milliseconds, by request code
  bool noPhoto = false;                    // a photo is announced and never sent
  bool shortPhoto = false;                 // photo frames end after the name
  MediaFaults media;
  std::string nameLetters;      // the ending of the names of photos and recordings
  bool uploadFail = false;      // files are refused
  bool fileKinds = false;       // replies of unknown kinds precede that of a file
  bool unmatchedPaths = false;  // replies to files name an unknown path
  bool earlyMarker = false;     // the marker is sent on connection, and not on request

  // Adds one fault in the form of the command line, NAME or NAME=VALUE.
  // Errors: false; `error` then says what is wrong.
  bool add(const std::string& spec, std::string& error);
};

// One line for each fault.
extern const char kFaultHelp[];

}  // namespace zel::simulator
