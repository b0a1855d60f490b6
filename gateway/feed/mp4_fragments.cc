#include "gateway/feed/mp4_fragments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "gateway/feed/box_writer.h"
#include "gateway/feed/unit_list.h"
#include "platform/h264/h264_headers.h"

namespace zel::gateway {
namespace {

using Bytes = std::span<const std::uint8_t>;
using platform::H264UnitType;

constexpr std::uint32_t kVideoTrack = 1, kAudioTrack = 2;
constexpr std::uint32_t kMovieScale = 1'000;
constexpr std::uint32_t kVideoScale = 1'000'000;  // the stream's own microseconds, so that no time is rounded
constexpr std::uint32_t kOne = 0x10000;           // 1.0 in 16.16
constexpr std::uint32_t kNoLanguage = 0x55C4;     // "und", five bits a letter

// Of a sample: a picture that others need nothing of, one that needs others, and sound.
constexpr std::uint32_t kKeySample = 0x02000000, kOtherSample = 0x01010000;

void matrix(BoxWriter& out) {
  for (const std::uint32_t value : {kOne, 0U, 0U, 0U, kOne, 0U, 0U, 0U, 0x40000000U}) out.u32(value);
}

void fileType(BoxWriter& out) {
  out.box("ftyp", [&] {
    out.text("iso5");  // whose data offsets count from the moof
    out.u32(512);
    for (const char* brand : {"iso5", "iso6", "mp41"}) out.text(brand);
  });
}

void movieHeader(BoxWriter& out) {
  out.fullBox("mvhd", 0, 0, [&] {
    out.zeros(4 + 4);  // made, changed
    out.u32(kMovieScale);
    out.u32(0);  // duration: what the fragments bring
    out.u32(kOne);
    out.u16(0x0100);  // volume
    out.zeros(2 + 8);
    matrix(out);
    out.zeros(6 * 4);
    out.u32(kAudioTrack + 1);  // the next free number
  });
}

void trackHeader(BoxWriter& out, std::uint32_t track, std::int32_t width, std::int32_t height) {
  out.fullBox("tkhd", 0, 0x3, [&] {  // enabled, in the movie
    out.zeros(4 + 4);
    out.u32(track);
    out.zeros(4 + 4 + 8 + 2 + 2);  // duration, layer and group among them
    out.u16(track == kAudioTrack ? 0x0100 : 0);
    out.zeros(2);
    matrix(out);
    out.u32(static_cast<std::uint32_t>(width) << 16);
    out.u32(static_cast<std::uint32_t>(height) << 16);
  });
}

void mediaHeader(BoxWriter& out, std::uint32_t scale) {
  out.fullBox("mdhd", 0, 0, [&] {
    out.zeros(4 + 4);
    out.u32(scale);
    out.u32(0);
    out.u16(kNoLanguage);
    out.zeros(2);
  });
}

void handler(BoxWriter& out, const char* type, const char* name) {
  out.fullBox("hdlr", 0, 0, [&] {
    out.zeros(4);
    out.text(type);
    out.zeros(3 * 4);
    out.text(name);
    out.zeros(1);
  });
}

void mediaIsInThisStream(BoxWriter& out) {
  out.box("dinf", [&] {
    out.fullBox("dref", 0, 0, [&] {
      out.u32(1);
      out.fullBox("url ", 0, 0x1, [] {});
    });
  });
}

// The decoder's configuration: the first bytes of the SPS, then both sets.
void avcConfiguration(BoxWriter& out, const StreamHeaders& headers) {
  constexpr int kHigh = 100;
  const Bytes sps = headers.sps.bytes(), pps = headers.pps.bytes();
  out.box("avcC", [&] {
    out.u8(1);
    out.bytes(sps.subspan(1, 3));                  // profile, constraints, level
    out.u8(0xFC | (platform::kLengthPrefix - 1));  // the size of lengths
    for (const auto& [set, reserved] : {std::pair(sps, 0xE0U), std::pair(pps, 0U)}) {
      out.u8(reserved | 1);
      out.u16(set.size());
      out.bytes(set);
    }
    const auto sequence = platform::parseH264Sequence(sps);
    if (!sequence || sequence->profile < kHigh) return;
    out.u8(0xFCU | static_cast<unsigned>(sequence->chromaFormat));
    for (int plane = 0; plane < 2; ++plane) out.u8(0xF8U | static_cast<unsigned>(sequence->bitDepth - 8));
    out.u8(0);  // no extended sets
  });
}

void colour(BoxWriter& out, const VideoColour& colour) {
  out.box("colr", [&] {
    out.text("nclx");
    out.u16(colour.primaries);
    out.u16(colour.transfer);
    out.u16(colour.matrix);
    out.u8(colour.fullRange ? 0x80 : 0);
  });
}

void videoEntry(BoxWriter& out, const StreamHeaders& headers) {
  out.box("avc1", [&] {
    out.zeros(6);
    out.u16(1);  // data reference
    out.zeros(2 + 2 + 3 * 4);
    out.u16(static_cast<std::uint32_t>(headers.width));
    out.u16(static_cast<std::uint32_t>(headers.height));
    out.u32(72 * kOne);  // dots an inch, both ways
    out.u32(72 * kOne);
    out.zeros(4);
    out.u16(1);       // pictures a sample
    out.zeros(32);    // the encoder's name
    out.u16(0x0018);  // depth
    out.u16(0xFFFF);
    avcConfiguration(out, headers);
    colour(out, headers.colour);
  });
}

// The elementary stream's descriptors, each with its tag and length.
void soundConfiguration(BoxWriter& out, Bytes config) {
  constexpr std::size_t kTag = 1 + 1;  // tag, length
  const std::size_t decoder = 1 + 1 + 3 + 4 + 4 + kTag + config.size();
  out.fullBox("esds", 0, 0, [&] {
    out.u8(0x03);
    out.u8(2 + 1 + kTag + decoder + kTag + 1);
    out.u16(0);  // number
    out.u8(0);
    out.u8(0x04);
    out.u8(decoder);
    out.u8(0x40);          // AAC
    out.u8(5 << 2 | 1);    // sound
    out.zeros(3 + 4 + 4);  // buffer, highest and mean rate: not known
    out.u8(0x05);
    out.u8(config.size());
    out.bytes(config);
    out.u8(0x06);
    out.u8(1);
    out.u8(0x02);
  });
}

void audioEntry(BoxWriter& out, const StreamHeaders& headers, const AudioConfig& sound) {
  out.box("mp4a", [&] {
    out.zeros(6);
    out.u16(1);
    out.zeros(8);
    out.u16(static_cast<std::uint32_t>(sound.channels));
    out.u16(16);  // bits a sample
    out.zeros(4);
    out.u32(static_cast<std::uint64_t>(sound.rate) << 16);
    soundConfiguration(out, headers.audioConfig.bytes());
  });
}

// The tables of a movie without samples, with one entry that says what the samples are.
template <class Entry>
void sampleTables(BoxWriter& out, const Entry& entry) {
  out.box("stbl", [&] {
    out.fullBox("stsd", 0, 0, [&] {
      out.u32(1);
      entry();
    });
    for (const char* table : {"stts", "stsc"}) out.fullBox(table, 0, 0, [&] { out.u32(0); });
    out.fullBox("stsz", 0, 0, [&] { out.zeros(4 + 4); });
    out.fullBox("stco", 0, 0, [&] { out.u32(0); });
  });
}

void videoTrack(BoxWriter& out, const StreamHeaders& headers) {
  out.box("trak", [&] {
    trackHeader(out, kVideoTrack, headers.width, headers.height);
    out.box("mdia", [&] {
      mediaHeader(out, kVideoScale);
      handler(out, "vide", "video");
      out.box("minf", [&] {
        out.fullBox("vmhd", 0, 1, [&] { out.zeros(8); });
        mediaIsInThisStream(out);
        sampleTables(out, [&] { videoEntry(out, headers); });
      });
    });
  });
}

void audioTrack(BoxWriter& out, const StreamHeaders& headers, const AudioConfig& sound) {
  out.box("trak", [&] {
    trackHeader(out, kAudioTrack, 0, 0);
    out.box("mdia", [&] {
      mediaHeader(out, static_cast<std::uint32_t>(sound.rate));
      handler(out, "soun", "sound");
      out.box("minf", [&] {
        out.fullBox("smhd", 0, 0, [&] { out.zeros(4); });
        mediaIsInThisStream(out);
        sampleTables(out, [&] { audioEntry(out, headers, sound); });
      });
    });
  });
}

void trackExtends(BoxWriter& out, std::uint32_t track, std::uint32_t duration, std::uint32_t flags) {
  out.fullBox("trex", 0, 0, [&] {
    out.u32(track);
    out.u32(1);  // the one description
    out.u32(duration);
    out.u32(0);
    out.u32(flags);
  });
}

std::uint32_t nominalDuration(double rate) { return static_cast<std::uint32_t>(std::lround(kVideoScale / rate)); }

// One sample of a track.
struct Sample {
  std::uint32_t track = kVideoTrack;
  std::uint64_t time = 0;  // in the track's scale, as the duration
  std::uint32_t duration = 0;
  std::uint32_t flags = kKeySample;
  std::size_t size = 0;
};

// The moof of one sample and the head of its mdat:
//
//   moof 100: header 8, mfhd 16, traf 76: header 8, tfhd 16, tfdt 20, trun 32
//   mdat   8: header
constexpr std::size_t kMoof = 8 + 16 + 8 + 16 + 20 + 32;
constexpr std::size_t kFragmentHead = kMoof + 8;

void fragmentHead(BoxWriter& out, std::uint32_t sequence, const Sample& sample) {
  out.box("moof", [&] {
    out.fullBox("mfhd", 0, 0, [&] { out.u32(sequence); });
    out.box("traf", [&] {
      out.fullBox("tfhd", 0, 0x020000, [&] { out.u32(sample.track); });  // offsets count from the moof
      out.fullBox("tfdt", 1, 0, [&] { out.u64(sample.time); });
      out.fullBox("trun", 0, 0x000701, [&] {  // offset; of each sample duration, size, flags
        out.u32(1);
        out.u32(kFragmentHead);
        out.u32(sample.duration);
        out.u32(sample.size);
        out.u32(sample.flags);
      });
    });
  });
  out.u32(8 + sample.size);
  out.u32(boxType("mdat"));
}

// Units that describe the stream stand in the init segment, and delimiters say nothing in a container.
bool isOfPicture(Bytes unit) {
  constexpr auto kDelimiter = H264UnitType{9};
  const H264UnitType type = platform::typeOf(unit.front());
  return type != H264UnitType::sequence && type != H264UnitType::picture && type != kDelimiter;
}

std::vector<Bytes> unitsOfSample(Bytes picture) {
  std::vector<Bytes> units = unitsOf(picture);
  std::erase_if(units, [](Bytes unit) { return !isOfPicture(unit); });
  return units;
}

}  // namespace

std::vector<std::uint8_t> mp4Beginning(const StreamDescription& description) {
  BoxWriter out;
  fileType(out);
  out.box("moov", [&] {
    movieHeader(out);
    videoTrack(out, description.headers);
    if (description.sound) audioTrack(out, description.headers, *description.sound);
    out.box("mvex", [&] {
      trackExtends(out, kVideoTrack, nominalDuration(description.rate), kOtherSample);
      if (description.sound) trackExtends(out, kAudioTrack, kSamplesPerFrame, kKeySample);
    });
  });
  return out.take();
}

// Times of the stream are whole microseconds, and samples are not: what follows without a gap stays without one.
std::uint64_t Mp4Fragments::soundTime(std::int64_t time, int rate) {
  constexpr std::uint64_t kRounding = 2;  // samples
  const auto exact = static_cast<std::uint64_t>(std::llround(static_cast<double>(time) / 1e6 * rate));
  const std::uint64_t apart = std::max(exact, nextSound_) - std::min(exact, nextSound_);
  const std::uint64_t begin = apart <= kRounding ? nextSound_ : exact;
  newestSound_ = newestSound_ ? std::max(begin, *newestSound_ + 1) : begin;
  nextSound_ = *newestSound_ + kSamplesPerFrame;
  return *newestSound_;
}

std::optional<std::vector<std::uint8_t>> Mp4Fragments::fragment(const MediaPacket& packet,
                                                                const StreamDescription& description) {
  BoxWriter out;
  if (packet.track == Track::audio) {
    if (!description.sound || packet.data.empty()) return std::nullopt;
    const std::uint64_t time = soundTime(packet.time, description.sound->rate);
    out.reserve(kFragmentHead + packet.data.size());
    fragmentHead(out, ++sequence_, {kAudioTrack, time, kSamplesPerFrame, kKeySample, packet.data.size()});
    out.bytes(packet.data.bytes());
    return out.take();
  }
  const std::vector<Bytes> units = unitsOfSample(packet.data.bytes());
  if (units.empty()) return std::nullopt;
  std::size_t size = 0;
  for (const Bytes unit : units) size += platform::kLengthPrefix + unit.size();
  out.reserve(kFragmentHead + size);
  fragmentHead(out, ++sequence_,
               {kVideoTrack, static_cast<std::uint64_t>(packet.time), nominalDuration(description.rate),
                packet.key ? kKeySample : kOtherSample, size});
  for (const Bytes unit : units) {
    out.u32(unit.size());
    out.bytes(unit);
  }
  return out.take();
}

}  // namespace zel::gateway
