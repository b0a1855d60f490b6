#pragma once

// Asio as the Linux platform includes it, and the local sockets besides. Its headers do not pass our warnings.
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
