#pragma once

// Exports a symbol from the shared library; all others are hidden.
#define ZEL_EXPORT __attribute__((visibility("default")))
