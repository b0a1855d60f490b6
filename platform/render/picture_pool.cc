#include "platform/render/picture_pool.h"

#include <utility>
#include <vector>

#include "base/mutex.h"

namespace zel::render {
namespace {

using PicturePtr = std::shared_ptr<platform::MemoryPixelBuffer>;

constexpr std::size_t kReferenceBytes = 128;  // more than a shared pointer's control block needs

}  // namespace

struct PicturePool::Shelf {
  // A picture, and the memory of its reference count.
  struct Slot {
    PicturePtr picture;
    alignas(std::max_align_t) std::byte references[kReferenceBytes];
  };

  Shelf(PictureSize pictureSize, std::size_t mostSlots) : size(pictureSize), most(mostSlots) {
    slots.reserve(most);
    free.reserve(most);
  }

  Slot* take() {
    const MutexLock lock(mutex);
    if (free.empty()) return make();
    Slot* const slot = free.back();
    free.pop_back();
    return slot;
  }

  Slot* make() ZEL_REQUIRES(mutex) {
    if (slots.size() == most) return nullptr;
    PicturePtr picture = platform::MemoryPixelBuffer::create(size.width, size.height);
    if (!picture) return nullptr;
    slots.push_back(std::make_unique<Slot>());
    slots.back()->picture = std::move(picture);
    return slots.back().get();
  }

  void giveBack(Slot* slot) {
    const MutexLock lock(mutex);
    free.push_back(slot);
  }

  const PictureSize size;
  const std::size_t most;
  mutable Mutex mutex;
  std::vector<std::unique_ptr<Slot>> slots ZEL_GUARDED_BY(mutex);
  std::vector<Slot*> free ZEL_GUARDED_BY(mutex);
};

namespace {

// Allocates the control block in the slot. The slot is free when that memory is deallocated, which is after the last
// strong or weak reference.
template <class Any, class Shelf>
struct SlotAllocator {
  using Slot = typename Shelf::Slot;
  using value_type = Any;
  template <class Other>
  struct rebind {
    using other = SlotAllocator<Other, Shelf>;
  };

  SlotAllocator(std::shared_ptr<Shelf> owner, Slot* place) : shelf(std::move(owner)), slot(place) {}
  template <class Other>
  SlotAllocator(const SlotAllocator<Other, Shelf>& other) : shelf(other.shelf), slot(other.slot) {}

  Any* allocate(std::size_t) {
    static_assert(sizeof(Any) <= kReferenceBytes);
    static_assert(alignof(Any) <= alignof(std::max_align_t));
    return reinterpret_cast<Any*>(slot->references);
  }
  void deallocate(Any*, std::size_t) { shelf->giveBack(slot); }

  bool operator==(const SlotAllocator& other) const { return slot == other.slot; }

  std::shared_ptr<Shelf> shelf;
  Slot* slot;
};

}  // namespace

PicturePool::PicturePool(PictureSize size, std::size_t most) : shelf_(std::make_shared<Shelf>(size, most)) {}

PicturePtr PicturePool::take() {
  Shelf::Slot* const slot = shelf_->take();
  if (slot == nullptr) return nullptr;
  const auto stays = [](platform::MemoryPixelBuffer*) {};
  return {slot->picture.get(), stays, SlotAllocator<std::byte, Shelf>(shelf_, slot)};
}

std::size_t PicturePool::made() const {
  const MutexLock lock(shelf_->mutex);
  return shelf_->slots.size();
}

}  // namespace zel::render
