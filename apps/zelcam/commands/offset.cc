#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELMediaOffset.h>

#include <fmt/format.h>

#include <string>

#include "apps/zelcam/host/console.h"
#include "gateway/json/hex.h"

namespace zel::app {

using gateway::recordHex;
using gateway::recordIn;

int runOffset(const Invocation& invocation) {
  const Values& values = invocation.values;
  if (values.has("TEXT") == values.has("--record")) {
    return complain(kWrongUsage, "offset", "give either an offset's text or --record and a record in hexadecimal");
  }
  if (values.has("TEXT")) {
    const std::string text = values.text("TEXT");
    const ZELMediaOffset offset = getMediaOffsetFromOffset(text);
    const std::string record = recordHex(offset);
    if (offset.lensCount == 0) complain(kDone, "offset", "the text has no lens: nothing can be unwrapped by it");
    return tellDone(invocation.settings.json, {{"text", text}, {"record", record}}, record);
  }
  const auto record = recordIn<ZELMediaOffset>(values.text("--record"));
  if (!record) {
    return complain(kWrongUsage, "offset",
                    fmt::format("a record is {} bytes as {} hexadecimal digits", sizeof(ZELMediaOffset),
                                2 * sizeof(ZELMediaOffset)));
  }
  const std::string text = getOffsetFromZELMediaOffset(*record);
  return tellDone(invocation.settings.json, {{"text", text}, {"record", recordHex(*record)}}, text);
}

}  // namespace zel::app
