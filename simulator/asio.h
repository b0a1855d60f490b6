#pragma once

// Asio without Boost, as every file of this folder includes it. Its headers do not pass our warnings.
#ifndef ASIO_STANDALONE
#define ASIO_STANDALONE
#endif

// ThreadSanitizer does not know memory fences; what Asio's completion needs them for, its queue's lock gives as well.
#ifndef ASIO_DISABLE_FENCED_BLOCK
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
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#pragma GCC diagnostic pop
