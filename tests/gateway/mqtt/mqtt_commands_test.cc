#include "gateway/mqtt/mqtt_commands.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using nlohmann::json;

// A row that answers with what it was asked.
Row echo(const std::string& method, const std::string& path) {
  Row row;
  row.method = method;
  row.path = path;
  row.handle = [](const RowCall& call, const Respond& respond) {
    respond(jsonResponse({{"serial", call.parameter("serial")}, {"body", call.body}}, 201));
  };
  return row;
}

class MqttCommandsTest : public ::testing::Test {
 protected:
  json run(const std::string& name, const std::string& content) {
    std::string said;
    runCommand(commands_, "E1", name, content, [&](const std::string& answer) { said = answer; });
    return json::parse(said, nullptr, false);
  }
  MqttCommands commands_ =
      commandsOf({echo("POST", "/api/v1/cameras/{serial}/call"), echo("GET", "/api/v1/cameras/{serial}/lens"),
                  echo("POST", "/api/v1/cameras/{serial}/outputs/{id}"), echo("POST", "/api/v1/other/{serial}")});
};

TEST_F(MqttCommandsTest, OnlyRowsThatDoSomethingAtACameraAreCommands) {
  ASSERT_EQ(commands_.size(), 1U);
  EXPECT_TRUE(commands_.contains("call"));
}

TEST_F(MqttCommandsTest, ACommandIsItsRowAndTheAnswerBearsItsNumber) {
  EXPECT_EQ(run("call", R"({"id": 7, "operation": "x"})"),
            json::parse(R"({"id": 7, "status": 201, "body": {"serial": "E1", "body": {"operation": "x"}}})"));
  EXPECT_EQ(run("call", R"({"id": "a"})")["id"], "a");
  EXPECT_EQ(run("call", "")["body"]["body"], json::object());
}

TEST_F(MqttCommandsTest, WhatIsMalformedIsAnswered) {
  for (const std::string content : {"{", "[]", "null", "\"x\"", "\xFF\xFE", "{\"a\":1}}", "5"}) {
    const json answer = run("call", content);
    EXPECT_EQ(answer["status"], 400) << content;
    EXPECT_TRUE(answer["id"].is_null());
  }
  EXPECT_EQ(run("call", std::string(60'000, '['))["status"], 400);
  EXPECT_EQ(run("nothing", "{}")["status"], 404);
  EXPECT_TRUE(run("call", R"({"id": {"a": 1}})")["id"].is_null());
  EXPECT_TRUE(run("call", "{\"id\": \"" + std::string(201, 'x') + "\"}")["id"].is_null());
}

}  // namespace
}  // namespace zel::gateway
