#include "gateway/outputs/output_place.h"

#include <ZELTarkaSDK/OutputAddress.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {
namespace {

using Reason = CameraError::Reason;

constexpr std::size_t kLongestName = 200;  // bytes; segments of a playlist have longer names than itself
constexpr std::size_t kLongestAddress = 2'000;
constexpr mode_t kOwnerOnly = 0600;

bool isPlainName(std::string_view name) {
  const auto isControl = [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; };
  return !name.empty() && name.size() <= kLongestName && name.front() != '.' && isUtf8(name) &&
         name.find_first_of("/\\") == std::string_view::npos && std::ranges::none_of(name, isControl);
}

}  // namespace

Result<std::unique_ptr<OutputPlace>> OutputPlace::find(const std::string& folder, const std::string& address) {
  const auto parsed = address.size() <= kLongestAddress ? parseOutputAddress(address) : std::nullopt;
  if (!parsed || parsed->kind == OutputKind::standardOutput) {
    return CameraError{Reason::invalid, "an output is NAME.mp4, NAME.ts, NAME.flv, NAME.m3u8, rtmp://... or srt://..."};
  }
  if (parsed->isServer()) {
    return std::unique_ptr<OutputPlace>(new OutputPlace(parsed->target, parsed->name(), false));
  }
  if (!isPlainName(address))
    return CameraError{Reason::invalid, "a file has a plain name: no folders, no control characters, no dot first"};
  const std::string path = folder + "/" + address;
  const platform::UniqueDescriptor file(::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kOwnerOnly));
  if (file.get() >= 0) return std::unique_ptr<OutputPlace>(new OutputPlace(path, address, true));
  if (errno == EEXIST) return CameraError{Reason::invalid, "there is a file \"" + address + "\" already"};
  return CameraError{Reason::platform, "cannot write \"" + address + "\": " + std::strerror(errno)};
}

OutputPlace::OutputPlace(std::string target, std::string shown, bool isFile)
    : target_(std::move(target)), shown_(std::move(shown)), isFile_(isFile) {}

OutputPlace::~OutputPlace() {
  struct stat status {};
  if (isFile_ && ::stat(target_.c_str(), &status) == 0 && status.st_size == 0) ::unlink(target_.c_str());
}

}  // namespace zel::gateway
