#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// A completion handler: the error first, empty on success, then the values of the camera's reply. On an error, numbers
// and records are 0, and text and bytes are absent.
// Thread: main queue; called at most once.
template <class... Values>
using RebackBlock = std::function<void(const std::optional<ZELError>& error, Values... values)>;

// A handler of one reply dictionary. Absent: a success without values.
using RebackDic = std::function<void(const std::optional<ZELMessageFields>& reply)>;

}  // namespace zel

// Images that arrive one after another.
// Thread: any thread.
class ZEL_EXPORT ZELDataArray {
 public:
  void append(ZELData data) {
    const std::lock_guard lock(mutex_);
    images_.push_back(std::move(data));
  }
  std::size_t size() const {
    const std::lock_guard lock(mutex_);
    return images_.size();
  }
  // index: below size().
  ZELData at(std::size_t index) const {
    const std::lock_guard lock(mutex_);
    return images_.at(index);
  }

 private:
  mutable std::mutex mutex_;
  std::vector<ZELData> images_;
};

// A captured photo: the camera's file name, absent where it is not ASCII text, and the image file.
using ZELPhotoBlock = zel::RebackBlock<const std::optional<std::string>&, const std::optional<ZELData>&>;

// A bracketed series: names and images in the order of arrival. A name that is not ASCII text is empty. The list of
// images is the series' own, and grows when the camera sends more than were requested; null on an error.
using ZELPhotoSeriesBlock =
    zel::RebackBlock<const std::vector<std::string>&, const std::shared_ptr<const ZELDataArray>&>;
