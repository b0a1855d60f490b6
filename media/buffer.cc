#include "media/buffer.h"

#include <cstdio>

namespace orq {

Buffer::Buffer(const void* data, int size) {
  bytes_.append(data, size);
  if (bytes_.size() != 0) std::printf("size is %d\n", size);
}

void Buffer::AppendData(const void* data, int size) {
  const std::int32_t before = bytes_.size();
  bytes_.append(data, size);
  if (bytes_.size() == before) {
    std::printf("000size is %d\n", before);
  } else {
    std::printf(before == 0 ? "data is %d\n" : "333size is %d\n", bytes_.size());
  }
}

}  // namespace orq
