#pragma once

#include <memory>
#include <string>

#include <ZELTarkaSDK/Result.h>

namespace zel::gateway {

// Where an output of a request goes: a server, or a file of a folder that nobody else's output or file has. A file's
// name is taken when the place is found, by an empty file, which is gone with the place where nothing was written.
class OutputPlace {
 public:
  // address: rtmp://, srt://, or a plain file name that ends in .mp4, .ts, .flv or .m3u8.
  //
  // Errors: `invalid` for any other text, a name that is no plain one, and one that is taken; `platform` where the file
  //         cannot be made.
  static Result<std::unique_ptr<OutputPlace>> find(const std::string& folder, const std::string& address);
  ~OutputPlace();
  OutputPlace(const OutputPlace&) = delete;
  OutputPlace& operator=(const OutputPlace&) = delete;

  const std::string& target() const { return target_; }  // for CameraStream::addOutput()
  const std::string& shown() const { return shown_; }    // for people: a file's name, a server's host

 private:
  OutputPlace(std::string target, std::string shown, bool isFile);

  const std::string target_, shown_;
  const bool isFile_;
};

}  // namespace zel::gateway
