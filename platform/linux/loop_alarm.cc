#include "platform/linux/loop_alarm.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

namespace zel::platform {
namespace {

int makeEvent() {
  const int event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (event < 0) throw std::system_error(errno, std::generic_category(), "eventfd");  // as the io_context does
  return event;
}

}  // namespace

LoopAlarm::LoopAlarm(asio::io_context& context, std::function<void()> call)
    : event_(context, makeEvent()), call_(std::move(call)) {
  wait();
}

// It cannot fail: the count does not overflow in practice.
void LoopAlarm::ring() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(event_.native_handle(), &one, sizeof one);
}

// A read instead of a wait: it is resumed without an extra system call.
void LoopAlarm::wait() { event_.async_read_some(asio::buffer(&rings_, sizeof rings_), Rung{this}); }

void LoopAlarm::rung(const std::error_code& error) {
  if (error) return;
  wait();
  call_();
}

void* LoopAlarm::Memory::take(std::size_t size) {
  if (taken_ || size > kBytes) return ::operator new(size);
  taken_ = true;
  return bytes_;
}

void LoopAlarm::Memory::giveBack(void* block) {
  if (block != bytes_) return ::operator delete(block);
  taken_ = false;
}

}  // namespace zel::platform
