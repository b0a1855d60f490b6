// A record of which a member is not told.

#include "protocol/records.h"

namespace zel {

#if FAULT == 0
constexpr RecordLayout kExposure{
    "ZELIPMEParam",
    sizeof(ZELIPMEParam),
    {layout::member("value1", &ZELIPMEParam::value1), layout::member("value2", &ZELIPMEParam::value2)}};
#elif FAULT == 1
constexpr RecordLayout kExposure{
    "ZELIPMEParam", sizeof(ZELIPMEParam), {layout::member("value1", &ZELIPMEParam::value1)}};
#endif
static_assert(kExposure.size() == 2);

}  // namespace zel
