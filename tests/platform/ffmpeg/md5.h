#pragma once

extern "C" {
#include <libavutil/md5.h>
#include <libavutil/mem.h>
}

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace zel::test {

// An MD5 sum in the making.
class Md5 {
 public:
  Md5() { av_md5_init(state_.get()); }

  void add(const std::uint8_t* bytes, std::size_t size) { av_md5_update(state_.get(), bytes, size); }

  // In hexadecimal; nothing can be added afterwards.
  std::string text() {
    std::uint8_t digest[16];
    av_md5_final(state_.get(), digest);
    std::string result;
    for (const std::uint8_t byte : digest) {
      char digits[3];
      std::snprintf(digits, sizeof digits, "%02x", byte);
      result += digits;
    }
    return result;
  }

 private:
  struct Free {
    void operator()(AVMD5* state) const { av_free(state); }
  };
  std::unique_ptr<AVMD5, Free> state_{av_md5_alloc()};
};

}  // namespace zel::test
