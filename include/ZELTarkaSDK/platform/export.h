#pragma once

// Marks what the shared library shows; everything else stays hidden.
#define ZEL_EXPORT __attribute__((visibility("default")))
