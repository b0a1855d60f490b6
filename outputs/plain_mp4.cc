#include "outputs/plain_mp4.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

#include <ZELTarkaSDK/AudioConfig.h>

#include "outputs/libav.h"
#include "outputs/mp4_boxes.h"
#include "outputs/stream_setup.h"
#include "platform/linux/files/temporary_file.h"

namespace zel {
namespace {

constexpr std::size_t kLargestMoov = std::size_t{512} << 20;
constexpr std::size_t kPiece = std::size_t{1} << 20;
constexpr mode_t kOwnerOnly = 0600;

bool readAt(int file, std::uint64_t from, std::span<std::uint8_t> into) {
  while (!into.empty()) {
    const ssize_t count = ::pread(file, into.data(), into.size(), static_cast<off_t>(from));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    from += static_cast<std::uint64_t>(count);
    into = into.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool copyRange(int from, std::uint64_t begin, std::uint64_t end, const TemporaryFile& to) {
  std::vector<std::uint8_t> piece(kPiece);
  while (begin < end) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, end - begin));
    const std::span<std::uint8_t> part(piece.data(), size);
    if (!readAt(from, begin, part) || !to.write(part)) return false;
    begin += size;
  }
  return true;
}

// A top-level box.
struct FileBox {
  std::uint32_t type = 0;
  std::uint64_t begin = 0, end = 0;
};

std::vector<FileBox> boxesOf(int file) {
  std::vector<FileBox> boxes;
  std::array<std::uint8_t, 16> head{};
  std::uint64_t at = 0;
  while (readAt(file, at, std::span(head).first(8))) {
    std::uint64_t size = numberAt(head, 0, 4);
    if (size == 1 && readAt(file, at, head)) size = numberAt(head, 8, 8);
    if (size < 8) return {};
    boxes.push_back({static_cast<std::uint32_t>(numberAt(head, 4, 4)), at, at + size});
    at += size;
  }
  return boxes;
}

// Moves the moov box to the front.
bool arrange(int from, const TemporaryFile& to, bool spherical) {
  const std::vector<FileBox> boxes = boxesOf(from);
  const auto type = std::ranges::find(boxes, boxType("ftyp"), &FileBox::type);
  const auto description = std::ranges::find(boxes, boxType("moov"), &FileBox::type);
  if (type == boxes.end() || description == boxes.end() || type->end > description->begin) return false;
  if (description->end - description->begin > kLargestMoov) return false;
  std::vector<std::uint8_t> moov(description->end - description->begin);
  if (!readAt(from, description->begin, moov)) return false;
  if (spherical && !addSphericalBox(moov)) return false;
  if (!moveChunks(moov, moov.size())) return false;
  return copyRange(from, 0, type->end, to) && to.write(moov) && copyRange(from, type->end, description->begin, to);
}

bool addStreamsLike(const AVFormatContext& from, AVFormatContext& to, bool spherical) {
  for (unsigned i = 0; i < from.nb_streams; ++i) {
    AVStream* const stream = avformat_new_stream(&to, nullptr);
    if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, from.streams[i]->codecpar) < 0) return false;
    stream->codecpar->codec_tag = 0;
    stream->time_base = from.streams[i]->time_base;
    const bool video = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    if (video && spherical && !markSpherical(*stream)) return false;
  }
  return true;
}

// A fragment has no duration for its last audio frame; without one the plain file would end before that frame.
void completeSound(const AVStream& stream, AVPacket& packet) {
  const AVCodecParameters& sound = *stream.codecpar;
  if (sound.codec_type != AVMEDIA_TYPE_AUDIO || packet.duration > 0 || sound.sample_rate <= 0) return;
  packet.duration = av_rescale_q(kSamplesPerFrame, {1, sound.sample_rate}, stream.time_base);
}

int copyPackets(AVFormatContext& from, AVFormatContext& to) {
  const PacketPtr packet(av_packet_alloc());
  if (!packet) return AVERROR(ENOMEM);
  int error = 0;
  while ((error = av_read_frame(&from, packet.get())) >= 0) {
    const auto stream = static_cast<unsigned>(packet->stream_index);
    if (stream >= to.nb_streams) continue;
    completeSound(*from.streams[stream], *packet);
    av_packet_rescale_ts(packet.get(), from.streams[stream]->time_base, to.streams[stream]->time_base);
    packet->pos = -1;
    if ((error = av_interleaved_write_frame(&to, packet.get())) < 0) return error;
  }
  return error == AVERROR_EOF ? 0 : error;
}

// Remuxes to libavformat's plain file, whose moov box is last.
int remux(const std::string& from, const std::string& to, bool spherical) {
  AVFormatContext* opened = nullptr;
  int error = avformat_open_input(&opened, std::filesystem::absolute(from).c_str(), nullptr, nullptr);
  if (error < 0) return error;
  const DemuxerPtr demuxer(opened);
  AVFormatContext* allocated = nullptr;
  if ((error = avformat_alloc_output_context2(&allocated, nullptr, "mp4", to.c_str())) < 0) return error;
  const MuxerPtr muxer(allocated);
  muxer->strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;
  if (!addStreamsLike(*demuxer, *muxer, spherical)) return AVERROR(ENOMEM);
  if ((error = avio_open(&muxer->pb, to.c_str(), AVIO_FLAG_WRITE)) < 0) return error;
  if ((error = avformat_write_header(muxer.get(), nullptr)) < 0) return error;
  if ((error = copyPackets(*demuxer, *muxer)) < 0) return error;
  if ((error = av_write_trailer(muxer.get())) < 0) return error;
  return avio_closep(&muxer->pb);
}

// Keeps the permissions of the fragmented file.
bool takePlaceOf(const std::string& path, TemporaryFile& file) {
  struct stat old {};
  return ::stat(path.c_str(), &old) == 0 && ::fchmod(file.descriptor(), old.st_mode & 07777) == 0 && file.replace(path);
}

}  // namespace

Fault makePlainMp4(const std::string& path, bool spherical) {
  const std::string folder = std::filesystem::absolute(path).parent_path().string();
  TemporaryFile remuxed(folder, kOwnerOnly), arranged(folder, kOwnerOnly);
  const std::string stays = fmt::format("{} stays in fragments: ", path);
  if (!remuxed.isThere() || !arranged.isThere()) return stays + std::strerror(errno);
  if (const int error = remux(path, remuxed.path(), spherical); error < 0) return stays + wordsFor(error);
  errno = 0;
  if (arrange(remuxed.descriptor(), arranged, spherical) && takePlaceOf(path, arranged)) return std::nullopt;
  return stays + (errno != 0 ? std::strerror(errno) : "it cannot be described anew");
}

}  // namespace zel
