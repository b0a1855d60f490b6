#include "outputs/libav_sink.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "outputs/segments.h"
#include "outputs/stream_setup.h"
#include "platform/linux/files/temporary_file.h"

namespace zel {
namespace {

constexpr char kLinger[] = "5";                 // seconds
constexpr std::int64_t kMostAhead = 1'000'000;  // microseconds that one track may be ahead of the other

const char* formatOf(OutputKind kind) {
  switch (kind) {
    case OutputKind::mp4:
      return "mp4";
    case OutputKind::ts:
    case OutputKind::standardOutput:
    case OutputKind::srt:
      return "mpegts";
    case OutputKind::flv:
    case OutputKind::rtmp:
      return "flv";
    case OutputKind::hls:
      return "hls";
  }
  return "";
}

// A pipe is opened again, so that it can be made non-blocking without changing it for other users.
std::string standardOutputUrl() {
  struct stat type {};
  const bool isPipe = ::fstat(STDOUT_FILENO, &type) == 0 && S_ISFIFO(type.st_mode);
  const int file = isPipe ? ::open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_CLOEXEC) : -1;
  return fmt::format("pipe:{}", file >= 0 ? file : STDOUT_FILENO);
}

// An absolute path, so that no part of it is parsed as a protocol name.
std::string urlOf(const OutputAddress& address) {
  if (address.kind == OutputKind::standardOutput) return standardOutputUrl();
  return address.isServer() ? address.target : std::filesystem::absolute(address.target).string();
}

// A pipe without a reader would block forever.
bool isNoFile(const std::string& path) {
  std::error_code fault;
  const auto type = std::filesystem::status(path, fault).type();
  return type == std::filesystem::file_type::directory || type == std::filesystem::file_type::fifo ||
         type == std::filesystem::file_type::socket;
}

}  // namespace

LibavSink::LibavSink(OutputAddress address, double secondsToWait)
    : address_(std::move(address)), secondsToWait_(secondsToWait) {}

// The HLS muxer frees its memory only when it writes the trailer.
LibavSink::~LibavSink() {
  deadline_.endWithin(1);
  if (!hlsFiles_ || !muxer_ || !isConnected_) return;
  hlsFiles_->giveUp();
  av_write_trailer(muxer_.get());
}

Fault LibavSink::open(const StreamHeaders& headers) {
  AVFormatContext* muxer = nullptr;
  if (avformat_alloc_output_context2(&muxer, nullptr, formatOf(address_.kind), urlOf(address_).c_str()) < 0) {
    return fmt::format("{}: no memory", address_.name());
  }
  muxer_.reset(muxer);
  muxer->interrupt_callback = {isOver, this};
  muxer->max_interleave_delta = kMostAhead;
  muxer->flush_packets = 1;
  muxer->strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;  // for the boxes of spherical video
  if (address_.kind == OutputKind::hls) {
    hlsFiles_ = std::make_unique<HlsFiles>();
    hlsFiles_->attachTo(*muxer);
  }
  if (!addStreams(*muxer, headers)) return fmt::format("{}: the camera's sound is of an unknown kind", address_.name());
  if (Fault fault = openTarget()) return fault;
  Options options;
  chooseOptions(options);
  if (const int error = avformat_write_header(muxer, options.get()); error < 0) return faultFor(error);
  isConnected_ = true;
  return std::nullopt;
}

Fault LibavSink::openTarget() {
  if (address_.isServer()) deadline_.allow(secondsToWait_);
  if (address_.kind == OutputKind::hls) forgetSegments(address_.target);
  if (address_.isFile() && isNoFile(address_.target)) {
    return fmt::format("cannot write {}: it is no plain file", address_.name());
  }
  if (address_.isFile()) removeLeftovers(std::filesystem::absolute(address_.target).parent_path().string());
  if ((muxer_->oformat->flags & AVFMT_NOFILE) != 0) return folderFault();
  Options options;
  // Otherwise the connection is closed before the server has confirmed the last pictures.
  if (address_.kind == OutputKind::srt) options.set("linger", kLinger);
  int error = avio_open2(&muxer_->pb, muxer_->url, AVIO_FLAG_WRITE, &muxer_->interrupt_callback, options.get());
  if (error >= 0 && address_.kind == OutputKind::mp4) error = AVERROR(disk_.open(muxer_->url));
  return error < 0 ? faultFor(error) : std::nullopt;
}

// Checked here, because the muxer leaks memory when it cannot open its files.
Fault LibavSink::folderFault() const {
  const std::string folder = std::filesystem::absolute(address_.target).parent_path().string();
  return ::access(folder.c_str(), W_OK | X_OK) == 0 ? std::nullopt : Fault(faultFor(AVERROR(errno)));
}

void LibavSink::chooseOptions(Options& options) const {
  if (address_.kind == OutputKind::mp4) {
    // delay_moov: the moov box is written with the first fragment, so that it contains the delay of the sound.
    options.set("movflags", "frag_keyframe+empty_moov+delay_moov+default_base_moof");
    options.set("frag_duration", "1000000");
  }
  if (address_.kind == OutputKind::rtmp) options.set("flvflags", "no_duration_filesize");
  if (address_.kind != OutputKind::hls) return;
  options.set("hls_time", std::to_string(kSegmentSeconds));
  options.set("hls_list_size", std::to_string(kSegmentsKept));
  options.set("hls_flags", "delete_segments+independent_segments");
  options.set("hls_segment_filename", segmentPattern(urlOf(address_)));
}

Fault LibavSink::write(const MediaPacket& packet) {
  if (address_.isServer()) deadline_.allow(secondsToWait_);
  const PacketPtr made = packetFor(*muxer_, packet);
  if (!made) return fmt::format("{}: no memory", address_.name());
  std::int64_t& last = last_[made->stream_index];
  if (made->dts <= last) made->pts = made->dts = last + 1;
  last = made->dts;
  ++handed_[made->stream_index];
  return settled(av_interleaved_write_frame(muxer_.get(), made.get()));
}

// After a refused packet everything is flushed, because only then the counts show what it was.
Fault LibavSink::settled(int error) {
  const bool leavesOut = isRefusal(error);
  while (isRefusal(error)) error = av_interleaved_write_frame(muxer_.get(), nullptr);
  if (leavesOut) countLeftOut();
  if (hlsFiles_ && hlsFiles_->error() < 0) error = hlsFiles_->error();
  if (error < 0) return faultFor(error);
  return address_.kind == OutputKind::mp4 ? syncFragment() : std::nullopt;
}

// The muxer refused a packet; all earlier writes have succeeded.
bool LibavSink::isRefusal(int error) const {
  const bool isWritten = (muxer_->pb == nullptr || muxer_->pb->error >= 0) && (!hlsFiles_ || hlsFiles_->error() == 0);
  return error < 0 && error != AVERROR(ENOMEM) && error != AVERROR_EXIT && isWritten;
}

void LibavSink::countLeftOut() {
  const auto missing = [this](int stream) {
    return handed_[stream] - static_cast<std::uint64_t>(muxer_->streams[stream]->nb_frames);
  };
  leftOut_ = {missing(kVideoStream), missing(kAudioStream)};
}

// Syncs after each fragment; nothing is written between two fragments.
Fault LibavSink::syncFragment() {
  const std::int64_t written = avio_tell(muxer_->pb);
  if (written == synced_) return std::nullopt;
  synced_ = written;
  const int fault = disk_.sync();
  return fault == 0 ? std::nullopt : Fault(faultFor(AVERROR(fault)));
}

Fault LibavSink::finish() {
  if (address_.isServer()) deadline_.allow(secondsToWait_);
  if (Fault fault = settled(av_interleaved_write_frame(muxer_.get(), nullptr))) return fault;
  const bool isEmpty = handed_[kVideoStream] > 0 && muxer_->streams[kVideoStream]->nb_frames == 0;
  int error = av_write_trailer(muxer_.get());
  if (error >= 0 && (muxer_->oformat->flags & AVFMT_NOFILE) == 0) error = avio_closep(&muxer_->pb);
  if (error >= 0 && hlsFiles_) error = hlsFiles_->error();
  muxer_.reset();
  if (error >= 0) error = AVERROR(disk_.sync());
  if (error < 0) return faultFor(error);
  return isEmpty ? Fault(fmt::format("cannot write {}: no picture fits its format", address_.name())) : std::nullopt;
}

Fault LibavSink::faultFor(int error) const {
  const std::string name = address_.name();
  if (address_.kind == OutputKind::standardOutput && error == AVERROR_EXIT) return name + ": its reader stood still";
  if (!address_.isServer()) return fmt::format("cannot write {}: {}", name, wordsFor(error));
  if (error == AVERROR_EXIT && deadline_.isEnding()) return fmt::format("{}: stopped before it was done", name);
  if (error == AVERROR_EXIT) return fmt::format("{}: the server did not answer within {} s", name, secondsToWait_);
  if (!isConnected_) return fmt::format("{}: the server cannot be reached: {}", name, wordsFor(error));
  return fmt::format("{}: the server ended the stream: {}", name, wordsFor(error));
}

}  // namespace zel
