#include "gateway/api/open_api.h"

#include <ZELTarkaSDK/Operations.h>

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

Row describedRow() {
  return {"POST",
          "/api/{serial}/x",
          "doX",
          "Does it",
          {{200, "application/json", "Reply", "done"}},
          nullptr,
          "Call",
          {{"width", "of it", {{"type", "integer"}}}}};
}

TEST(OpenApiTest, DescribesARowWithItsParametersBodyAndAnswers) {
  const auto operation = openApi({describedRow()}, false)["paths"]["/api/{serial}/x"]["post"];
  EXPECT_EQ(operation["operationId"], "doX");
  EXPECT_EQ(operation["parameters"][0]["name"], "serial");
  EXPECT_EQ(operation["parameters"][0]["in"], "path");
  EXPECT_EQ(operation["parameters"][1]["name"], "width");
  EXPECT_EQ(operation["requestBody"]["content"]["application/json"]["schema"]["$ref"], "#/components/schemas/Call");
  EXPECT_EQ(operation["responses"]["200"]["content"]["application/json"]["schema"]["$ref"],
            "#/components/schemas/Reply");
  EXPECT_TRUE(operation["responses"].contains("default"));
}

TEST(OpenApiTest, NamesEveryOperationOfTheCatalogueWithItsArguments) {
  const auto call = openApi({}, false)["components"]["schemas"]["Call"];
  EXPECT_EQ(call["properties"]["operation"]["enum"].size(), operations().size());
  EXPECT_EQ(call["oneOf"].size(), operations().size());
  for (const auto& one : call["oneOf"]) {
    if (one["title"] != "msgReqSetAEEVBias") continue;
    EXPECT_EQ(one["properties"]["args"]["minItems"], 1);
    return;
  }
  FAIL() << "the operation is not described";
}

TEST(OpenApiTest, AsksForATokenOnlyWhereOneIsNeeded) {
  EXPECT_FALSE(openApi({}, false).contains("security"));
  EXPECT_TRUE(openApi({}, true).contains("security"));
}

TEST(OpenApiTest, LeavesOutWhatIsLocalAndThePage) {
  Row local = describedRow(), page = describedRow();
  local.isLocal = true;
  page.answers.clear();
  EXPECT_TRUE(openApi({local, page}, false)["paths"].empty());
}

TEST(OpenApiTest, DescribesItself) {
  std::string body;
  const Row row = openApiRow({}, false);
  const Request request;
  row.handle({request, {}, {}}, [&](Response response) { body = std::get<std::string>(response.content); });
  EXPECT_TRUE(nlohmann::json::parse(body)["paths"].contains("/api/v1/openapi.json"));
}

}  // namespace
}  // namespace zel::gateway
