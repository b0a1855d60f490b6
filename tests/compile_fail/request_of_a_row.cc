// A request that does not fit its row of the catalogue.

#include "command/request.h"

namespace zel {

void ask(RequestEngine& engine, std::uint8_t byte, std::int16_t number, const RebackBlock<>& done,
         const RebackBlock<std::int32_t>& told, const RebackBlock<std::uint8_t>& narrow) {
#if FAULT == 0
  request<"registerMsgReqSetWBMode">(engine, done, byte);
  request<"registerMsgReqGetPhotoSelfTimer">(engine, told);
  request<"registerMsgReqGetGPSTimeout">(engine, told);  // wider than the field
  tell<"registerMsgReqUpdateGps">(engine, ZELGpsData{});
#elif FAULT == 1
  request<"registerMsgReqSetWBMode">(engine, done);
#elif FAULT == 2
  request<"registerMsgReqSetWBMode">(engine, done, byte, byte);
#elif FAULT == 3
  request<"registerMsgReqSetWBMode">(engine, done, number);
#elif FAULT == 4
  request<"registerMsgReqSetWBMode">(engine, told, byte);
#elif FAULT == 5
  request<"registerMsgReqGetGPSTimeout">(engine, narrow);
#elif FAULT == 6
  request<"registerMsgReqSetWBmode">(engine, done, byte);
#elif FAULT == 7
  tell<"registerMsgReqSetWBMode">(engine, byte);
#endif
}

}  // namespace zel
