#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// A file of the media folder.
//
// Units: bytes; nanoseconds since 1970.
struct MediaFile {
  std::string name;
  std::uint64_t bytes = 0;
  std::int64_t changed = 0;
  bool isPanorama = false;

  // Changes with the content.
  std::string tag() const;
};

struct OpenMediaFile {
  MediaFile file;
  platform::UniqueDescriptor descriptor;
};

// Whether the text is a plain file name that may be shown: no folder, nothing hidden, nothing that controls a terminal,
// at most 255 bytes.
bool isPlainName(std::string_view name);

// The media type of a file, by its extension; bytes where it has none of those that a gateway makes.
std::string_view mediaTypeOf(std::string_view name);

// One folder of photos, panoramas and recordings. What else is in it is not shown: folders, links, hidden files.
//
// Thread: any thread.
class MediaFolder {
 public:
  // Makes the folder where it is missing, and removes what killed programs have left in it.
  //
  // Errors: null; `error` names the folder and the fault.
  static std::unique_ptr<MediaFolder> open(const std::string& path, std::string& error);

  const std::string& path() const { return path_; }

  // By name.
  std::vector<MediaFile> files() const;
  // Errors: nothing where there is no such file.
  std::optional<OpenMediaFile> find(std::string_view name) const;
  // False where there is no such file, or it cannot be removed; errno then says why.
  bool remove(std::string_view name);
  // Stores the bytes under the plain form of the camera's name; never over another file. Gives the file.
  //
  // Errors: nothing; `error` says why.
  std::optional<MediaFile> store(std::string_view cameraName, std::span<const std::uint8_t> bytes, std::string& error);
  // The same beside a stored photo, under a name that says so.
  std::optional<MediaFile> storePanorama(const std::string& photo, std::span<const std::uint8_t> bytes,
                                         std::string& error);

 private:
  MediaFolder(std::string path, platform::UniqueDescriptor folder)
      : path_(std::move(path)), folder_(std::move(folder)) {}
  std::optional<MediaFile> saved(const std::string& name, std::span<const std::uint8_t> bytes, std::string& error);

  const std::string path_;
  const platform::UniqueDescriptor folder_;
};

}  // namespace zel::gateway
