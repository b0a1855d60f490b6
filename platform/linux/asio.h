#pragma once

// Asio without Boost, for every file that uses it. Its headers cause warnings with our flags.
#ifndef ASIO_STANDALONE
#define ASIO_STANDALONE
#endif

// ThreadSanitizer does not support fences. Asio's are not needed here: its queues are locked.
#if defined(__SANITIZE_THREAD__)
#define ZEL_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZEL_THREAD_SANITIZER
#endif
#endif
#if defined(ZEL_THREAD_SANITIZER) && !defined(ASIO_DISABLE_FENCED_BLOCK)
#define ASIO_DISABLE_FENCED_BLOCK
#endif

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#include <asio/buffer.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>
#pragma GCC diagnostic pop
