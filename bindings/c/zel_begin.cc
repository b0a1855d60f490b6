#include <ZELTarkaSDK/zel.h>

#include "bindings/c/call_object.h"

// What all calls that are begun have in common.

using namespace zel::c;

zel_status zel_call_cancel(zel_call* call, zel_error* error) {
  return guarded(error, [&] { objectOf<CallObject>(call)->cancel(); });
}

zel_status zel_call_free(zel_call* call) {
  return guarded(nullptr, [&] {
    if (call != nullptr) takeObject<CallObject>(call)->close();
  });
}
