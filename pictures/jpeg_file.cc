#include "pictures/jpeg_file.h"

#include <libyuv.h>
#include <turbojpeg.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "pictures/rgb_picture.h"

namespace zel {
namespace {

using Bytes = std::span<const std::uint8_t>;
using platform::chromaSamples;
using platform::MemoryPixelBuffer;
using PicturePtr = std::shared_ptr<MemoryPixelBuffer>;

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, Destroy>;

struct Header {
  int width = 0, height = 0, subsampling = 0, colours = 0;
};

// The Cb plane followed by the Cr plane, with half the width and height.
struct ChromaPlanes {
  ChromaPlanes(int width, int height)
      : stride(chromaSamples(width)), rows(chromaSamples(height)), bytes(2 * stride * rows) {}
  std::uint8_t* cb() { return bytes.data(); }
  std::uint8_t* cr() { return bytes.data() + stride * rows; }
  int step() const { return static_cast<int>(stride); }

  std::size_t stride, rows;
  std::vector<std::uint8_t> bytes;
};

// A 4:2:0 file already has the required planes.
bool readPlanes(void* decoder, Bytes file, const Header& header, MemoryPixelBuffer& into) {
  ChromaPlanes chroma(header.width, header.height);
  std::uint8_t* planes[] = {into.lumaRow(0).data(), chroma.cb(), chroma.cr()};
  int strides[] = {static_cast<int>(into.luma().stride), chroma.step(), chroma.step()};
  if (tjDecompressToYUVPlanes(decoder, file.data(), file.size(), planes, header.width, strides, header.height, 0) != 0)
    return false;
  libyuv::MergeUVPlane(chroma.cb(), chroma.step(), chroma.cr(), chroma.step(), into.chromaRow(0).data(),
                       static_cast<int>(into.chroma().stride), chroma.step(), static_cast<int>(chroma.rows));
  return true;
}

bool readColours(void* decoder, Bytes file, const Header& header, MemoryPixelBuffer& into) {
  const int stride = header.width * 4;
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride) * static_cast<std::size_t>(header.height));
  if (tjDecompress2(decoder, file.data(), file.size(), pixels.data(), header.width, stride, header.height, TJPF_BGRA,
                    0) != 0)
    return false;
  setBgra(pixels, into);
  return true;
}

bool read(void* decoder, Bytes file, const Header& header, MemoryPixelBuffer& into) {
  // With odd sides the library's planes are larger than the picture's.
  const bool isEven = header.width % 2 == 0 && header.height % 2 == 0;
  const bool isSame = header.subsampling == TJSAMP_420 && header.colours == TJCS_YCbCr && isEven;
  return (isSame ? readPlanes : readColours)(decoder, file, header, into);
}

// Both fill `file`, which has the maximum size, and return the used size; 0 on failure.
unsigned long writePlanes(void* encoder, const platform::PixelBuffer& picture, int quality, JpegBytes& file) {
  ChromaPlanes chroma(picture.width(), picture.height());
  const platform::PixelPlane luma = picture.luma(), both = picture.chroma();
  libyuv::SplitUVPlane(both.data, static_cast<int>(both.stride), chroma.cb(), chroma.step(), chroma.cr(), chroma.step(),
                       chroma.step(), static_cast<int>(chroma.rows));
  const std::uint8_t* planes[] = {luma.data, chroma.cb(), chroma.cr()};
  const int strides[] = {static_cast<int>(luma.stride), chroma.step(), chroma.step()};
  unsigned long size = file.size();
  std::uint8_t* into = file.data();
  const int status = tjCompressFromYUVPlanes(encoder, planes, picture.width(), strides, picture.height(), TJSAMP_420,
                                             &into, &size, quality, TJFLAG_NOREALLOC);
  return status == 0 ? size : 0;
}

unsigned long writeColours(void* encoder, const platform::PixelBuffer& picture, int quality, JpegBytes& file) {
  const std::vector<std::uint8_t> pixels = bgraOf(picture);
  unsigned long size = file.size();
  std::uint8_t* into = file.data();
  const int status = tjCompress2(encoder, pixels.data(), picture.width(), 0, picture.height(), TJPF_BGRA, &into, &size,
                                 TJSAMP_420, quality, TJFLAG_NOREALLOC);
  return status == 0 ? size : 0;
}

// The end of the header segment that begins with the marker at `at`; 0 without a segment.
std::size_t endOfSegment(Bytes file, std::size_t at) {
  constexpr std::uint8_t kFirstWithLength = 0xC0, kScan = 0xDA, kRestart = 0xD0, kEnd = 0xD9;
  if (at + 4 > file.size() || file[at] != 0xFF) return 0;
  const std::uint8_t marker = file[at + 1];
  const bool hasLength =
      marker >= kFirstWithLength && marker != 0xFF && marker != kScan && !(marker >= kRestart && marker <= kEnd);
  const std::size_t length = std::size_t{file[at + 2]} << 8 | file[at + 3];
  return hasLength && length >= 2 && at + 2 + length <= file.size() ? at + 2 + length : 0;
}

// Inside of a scan the byte FF never stands before another that begins a segment.
std::int64_t scansIn(Bytes file) {
  constexpr std::uint8_t kMarker = 0xFF, kScan = 0xDA;
  std::int64_t scans = 0;
  for (auto at = file.begin(); (at = std::find(at, file.end(), kMarker)) != file.end();) {
    const auto place = static_cast<std::size_t>(at - file.begin());
    if (place + 1 < file.size() && file[place + 1] == kScan) ++scans;
    const std::size_t end = endOfSegment(file, place);
    at = end != 0 ? file.begin() + static_cast<std::ptrdiff_t>(end) : at + 1;
  }
  return scans;
}

bool beginsAsJpeg(Bytes file) { return file.size() >= 2 && file[0] == 0xFF && file[1] == 0xD8; }

constexpr std::uint8_t kApplication0 = 0xE0, kApplication1 = 0xE1;
constexpr std::string_view kExif("Exif\0\0", 6);
constexpr std::string_view kXmp("http://ns.adobe.com/xap/1.0/\0", 29);

bool holdsExif(Bytes segment) {
  if (segment[1] != kApplication1 || segment.size() < 4 + kExif.size()) return false;
  return std::equal(kExif.begin(), kExif.end(), segment.begin() + 4,
                    [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
}

}  // namespace

platform::PixelBufferRef pictureOfJpeg(Bytes file, std::string& error) {
  const Handle decoder(tjInitDecompress());
  Header header;
  error = "it is no JPEG file";
  if (!decoder || file.empty() ||
      tjDecompressHeader3(decoder.get(), file.data(), file.size(), &header.width, &header.height, &header.subsampling,
                          &header.colours) != 0)
    return nullptr;
  error = "its size makes no sense";
  const std::int64_t pixels = std::int64_t{header.width} * header.height;
  if (pixels < 1 || pixels > kMostJpegPixels) return nullptr;
  if (const std::int64_t scans = scansIn(file); scans > 1) {
    error = "it takes too much to decode";
    if (pixels > kMostProgressivePixels || scans > kMostScannedPixels / pixels) return nullptr;
  }
  error = "its size makes no sense";
  const PicturePtr picture = MemoryPixelBuffer::create(header.width, header.height);
  if (!picture) return nullptr;
  error = "it is damaged";
  return read(decoder.get(), file, header, *picture) ? picture : nullptr;
}

std::optional<JpegBytes> jpegOf(const platform::PixelBuffer& picture, int quality) {
  const int width = picture.width(), height = picture.height();
  const Handle encoder(tjInitCompress());
  const unsigned long most = tjBufSize(width, height, TJSAMP_420);
  if (!encoder || width % 2 != 0 || height % 2 != 0 || most == static_cast<unsigned long>(-1)) return std::nullopt;
  JpegBytes file(most);
  // The format supports only the matrix of BT.601.
  const bool isSame = picture.colour().matrix == platform::ColourMatrix::bt601;
  const unsigned long size = (isSame ? writePlanes : writeColours)(encoder.get(), picture, quality, file);
  if (size == 0) return std::nullopt;
  file.resize(size);
  return file;
}

Bytes exifSegmentIn(Bytes file) {
  if (!beginsAsJpeg(file)) return {};
  std::size_t at = 2;
  while (const std::size_t end = endOfSegment(file, at)) {
    const Bytes segment = file.subspan(at, end - at);
    if (holdsExif(segment)) return segment;
    at = end;
  }
  return {};
}

JpegBytes xmpSegmentOf(std::string_view packet) {
  const std::size_t length = 2 + kXmp.size() + packet.size();
  if (length > 0xFFFF) return {};
  JpegBytes segment{0xFF, kApplication1, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)};
  segment.insert(segment.end(), kXmp.begin(), kXmp.end());
  segment.insert(segment.end(), packet.begin(), packet.end());
  return segment;
}

JpegBytes withSegments(Bytes file, std::span<const Bytes> segments) {
  JpegBytes result(file.begin(), file.end());
  if (!beginsAsJpeg(file)) return result;
  std::size_t at = 2;
  const std::size_t end = endOfSegment(file, at);
  if (end != 0 && file[at + 1] == kApplication0) at = end;
  result.resize(at);
  for (const Bytes segment : segments) result.insert(result.end(), segment.begin(), segment.end());
  const Bytes rest = file.subspan(at);
  result.insert(result.end(), rest.begin(), rest.end());
  return result;
}

}  // namespace zel
