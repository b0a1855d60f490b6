// An operation that is called by its name, and does not fit its row of the catalogue.

#include "stack/operation_table.h"

namespace zel::binding {

Operation make() {
#if FAULT == 0
  return operation<"registerMsgReqSetWBMode">("msgReqSetWBMode", &ZELCameraUCD::msgReqSetWBMode, "mode");
#elif FAULT == 1
  return operation<"registerMsgReqSetWBMode">("msgReqSetWBMode", &ZELCameraUCD::msgReqSetWBMode);
#elif FAULT == 2
  return operation<"registerMsgReqGetFlicker">("msgReqSetWBMode", &ZELCameraUCD::msgReqSetWBMode, "mode");
#endif
}

}  // namespace zel::binding
