#include "simulator/faults.h"

#include <functional>

#include "simulator/numbers.h"

namespace zel::simulator {

const char kFaultHelp[] = R"(Faults:
  garbage[=BYTES]            bytes before the marker (1000)
  early-marker               the marker is sent on connection, unasked, and not again
  one-byte-writes            every byte is a separate write
  split                      frames are written in random pieces
  stall[=SECONDS[/EVERY]]    silence of SECONDS (3.5) after every EVERY seconds (10) of sending
  unknown-types              frames of unknown data types
  length-zero[=TIMES]        a frame with a length of 0 (once)
  length-4gib[=TIMES]        a frame with a length of 4 GiB (once)
  disconnect=BYTES           unplugged after BYTES of each connection, plugged again a second later
  storm[=COUNT]              unplugged and plugged again COUNT times (20) right after the start
  slow-sync[=MS]             clock replies MS milliseconds late (50)
  no-reply=CODE              requests of that code, as 0x402E, are not answered
  refuse=CODE                requests of that code are refused
  duplicate-reply[=CODE]     replies come twice: of that request, or all
  short-reply[=CODE]         replies come without their body: of that request, or all
  late-reply=CODE/MS         replies to that request arrive MS milliseconds late, after others
  high-flags[=CODE]          successful replies have a flag of 2 to 255: of that request, or all
  trailing-bytes[=CODE]      replies end with 1 to 16 extra bytes: of that request, or all
  no-photo                   photos are announced by the reply, but never sent
  short-photo                photo frames end after the 64 bytes of the name
  utf8-names                 files are named with letters outside ASCII
  latin1-names               files are named in bytes that are not UTF-8
  upload-fail                files are refused
  file-kinds                 replies of unknown kinds precede that of a file, and report a failure
  unmatched-paths            replies to files name an unknown path
  corrupt-video[=SHARE]      bits are flipped in that share of the slices (0.1)
  lost-keys[=SHARE]          that share of the key pictures is not sent (0.5)
  no-parameter-sets[=COUNT]  the first COUNT key pictures (3) come without parameter sets
  split-pictures             a picture is sent in several frames, cut at any byte
  bursts[=PICTURES]          this many pictures (10) are held back and then sent at once
)";

namespace {

constexpr char kUtf8Letters[] = "_\xC3\xA9\xE5\x8C\x97";  // of two and of three bytes
constexpr char kLatin1Letters[] = "_\xE9";

bool readInto(const std::string& text, std::set<std::uint16_t>& codes) {
  std::uint16_t code = 0;
  if (!readCode(text, code)) return false;
  codes.insert(code);
  return true;
}

bool readInto(const std::string& text, CodeSet& set) {
  set.all = set.all || text.empty();
  return text.empty() || readInto(text, set.codes);
}

bool readLate(const std::string& text, std::map<std::uint16_t, int>& late) {
  const std::size_t slash = text.find('/');
  std::uint16_t code = 0;
  int time = 0;
  if (slash == std::string::npos || !readCode(text.substr(0, slash), code)) return false;
  if (!readNumber(text.substr(slash + 1), 1, 3'600'000, time)) return false;
  late[code] = time;
  return true;
}

bool readStall(const std::string& text, std::optional<Stall>& stall) {
  stall.emplace();
  const std::size_t slash = text.find('/');
  if (text.empty()) return true;
  if (!readNumber(text.substr(0, slash), 0.0, 3600.0, stall->seconds)) return false;
  return slash == std::string::npos || readNumber(text.substr(slash + 1), 0.1, 3600.0, stall->every);
}

// An optional number.
template <class T>
bool readOptional(const std::string& text, T otherwise, T most, T& value) {
  value = otherwise;
  return text.empty() || readNumber(text, T{1}, most, value);
}

// An optional share above 0.
bool readShare(const std::string& text, double otherwise, double& share) {
  share = otherwise;
  return text.empty() || (readNumber(text, 0.0, 1.0, share) && share > 0);
}

bool readSwitch(const std::string& text, bool& value) {
  value = true;
  return text.empty();
}

bool readLetters(const std::string& text, const char* letters, std::string& value) {
  value = letters;
  return text.empty();
}

}  // namespace

bool Faults::add(const std::string& spec, std::string& error) {
  const std::map<std::string, std::function<bool(const std::string&)>> readers = {
      {"garbage", [this](const auto& v) { return readOptional<std::size_t>(v, 1000, 100'000'000, garbage); }},
      {"early-marker", [this](const auto& v) { return readSwitch(v, earlyMarker); }},
      {"one-byte-writes", [this](const auto& v) { return readSwitch(v, oneByteWrites); }},
      {"split", [this](const auto& v) { return readSwitch(v, split); }},
      {"stall", [this](const auto& v) { return readStall(v, stall); }},
      {"unknown-types", [this](const auto& v) { return readSwitch(v, unknownTypes); }},
      {"length-zero", [this](const auto& v) { return readOptional(v, 1, 1'000'000, lengthZero); }},
      {"length-4gib", [this](const auto& v) { return readOptional(v, 1, 1'000'000, length4GiB); }},
      {"disconnect", [this](const auto& v) { return readNumber<std::uint64_t>(v, 1, UINT64_MAX, disconnect); }},
      {"storm", [this](const auto& v) { return readOptional(v, 20, 1'000'000, storm); }},
      {"slow-sync", [this](const auto& v) { return readOptional(v, 50, 3'600'000, slowSync); }},
      {"no-reply", [this](const auto& v) { return readInto(v, noReply); }},
      {"refuse", [this](const auto& v) { return readInto(v, refuse); }},
      {"duplicate-reply", [this](const auto& v) { return readInto(v, duplicateReply); }},
      {"short-reply", [this](const auto& v) { return readInto(v, shortReply); }},
      {"late-reply", [this](const auto& v) { return readLate(v, lateReply); }},
      {"high-flags", [this](const auto& v) { return readInto(v, highFlags); }},
      {"trailing-bytes", [this](const auto& v) { return readInto(v, trailingBytes); }},
      {"utf8-names", [this](const auto& v) { return readLetters(v, kUtf8Letters, nameLetters); }},
      {"latin1-names", [this](const auto& v) { return readLetters(v, kLatin1Letters, nameLetters); }},
      {"no-photo", [this](const auto& v) { return readSwitch(v, noPhoto); }},
      {"short-photo", [this](const auto& v) { return readSwitch(v, shortPhoto); }},
      {"corrupt-video", [this](const auto& v) { return readShare(v, 0.1, media.corruptUnits); }},
      {"lost-keys", [this](const auto& v) { return readShare(v, 0.5, media.lostKeyFrames); }},
      {"no-parameter-sets",
       [this](const auto& v) { return readOptional(v, 3, 1'000'000, media.missingParameterSets); }},
      {"split-pictures", [this](const auto& v) { return readSwitch(v, media.splitAnywhere); }},
      {"bursts", [this](const auto& v) { return readOptional(v, 10, 10'000, media.burst); }},
      {"upload-fail", [this](const auto& v) { return readSwitch(v, uploadFail); }},
      {"file-kinds", [this](const auto& v) { return readSwitch(v, fileKinds); }},
      {"unmatched-paths", [this](const auto& v) { return readSwitch(v, unmatchedPaths); }},
  };
  const std::size_t equals = spec.find('=');
  const auto reader = readers.find(spec.substr(0, equals));
  const std::string value = equals == std::string::npos ? "" : spec.substr(equals + 1);
  if (reader == readers.end()) {
    error = "unknown fault \"" + spec + "\"";
  } else if ((equals != std::string::npos && value.empty()) || !reader->second(value)) {
    error = "fault \"" + spec + "\" has a value that is missing, malformed or out of range";
  } else {
    return true;
  }
  return false;
}

}  // namespace zel::simulator
