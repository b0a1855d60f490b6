#include "gateway/json/event_json.h"

#include <gtest/gtest.h>

#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

TEST(EventJsonTest, HasTheTypeItsNameItsValuesAndTheTime) {
  ZELMessageFields fields;
  fields.set("ucharValue", std::uint8_t{40});
  EXPECT_EQ(jsonLine(eventJson(2, fields, "12:00:00.000")),
            R"({"event":2,"name":"batteryUpdate","value":{"ucharValue":40},"time":"12:00:00.000"})");
}

TEST(EventJsonTest, OfAnUnknownTypeIsNamedSo) {
  EXPECT_EQ(jsonLine(eventJson(9999, std::nullopt, "t")), R"({"event":9999,"name":"unknown","value":{},"time":"t"})");
}

}  // namespace
}  // namespace zel::gateway
