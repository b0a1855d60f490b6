#pragma once

// Asio as included by the Linux platform, plus local sockets. Its headers cause warnings with our flags.
#include "platform/linux/asio.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#include <asio/buffer.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/thread_pool.hpp>
#pragma GCC diagnostic pop
