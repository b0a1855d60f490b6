#include "gateway/api/router.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using testing::ElementsAre;
using testing::Pair;

class RouterTest : public testing::Test {
 protected:
  static Row row(std::string method, std::string path, bool isLocal = false) {
    Row made;
    made.method = std::move(method);
    made.path = std::move(path);
    made.isLocal = isLocal;
    return made;
  }
  static Request request(const std::string& method, const std::string& path) {
    return {.method = method, .target = *parseTarget(path), .headers = {}, .body = {}};
  }
  std::string pathOf(const std::string& method, const std::string& path) const {
    const auto found = matched(rows, request(method, path));
    const auto* const match = std::get_if<Matched>(&found);
    return match != nullptr ? match->row->path : std::to_string(std::get<Response>(found).status);
  }

  const std::vector<Row> rows = {row("GET", "/"), row("GET", "/api/cameras"), row("GET", "/api/cameras/{serial}"),
                                 row("POST", "/api/cameras/{serial}"), row("GET", "/api/wire", true)};
};

TEST_F(RouterTest, FindsTheRowOfAPath) {
  EXPECT_EQ(pathOf("GET", "/"), "/");
  EXPECT_EQ(pathOf("GET", "/api/cameras"), "/api/cameras");
  EXPECT_EQ(pathOf("GET", "/api/cameras/x"), "/api/cameras/{serial}");
}

TEST_F(RouterTest, GivesTheParametersDecoded) {
  const auto found = matched(rows, request("POST", "/api/cameras/a%2Fb"));
  EXPECT_THAT(std::get<Matched>(found).parameters, ElementsAre(Pair("serial", "a/b")));
}

TEST_F(RouterTest, AnswersAHeadAsAGet) { EXPECT_EQ(pathOf("HEAD", "/api/cameras"), "/api/cameras"); }

TEST_F(RouterTest, FindsNothingElsewhere) {
  for (const char* path : {"/api", "/api/cameras/", "/api/cameras/x/y", "//", "/API/cameras"})
    EXPECT_EQ(pathOf("GET", path), "404") << path;
}

TEST_F(RouterTest, NamesTheMethodsOfAPath) {
  const auto found = matched(rows, request("DELETE", "/api/cameras/x"));
  EXPECT_EQ(std::get<Response>(found).status, 405);
  EXPECT_THAT(std::get<Response>(found).headers, ElementsAre(Pair("Allow", "GET, HEAD, POST")));
}

TEST_F(RouterTest, HidesLocalRowsFromTheNetwork) {
  EXPECT_EQ(pathOf("GET", "/api/wire"), "404");
  Request local = request("GET", "/api/wire");
  local.isLocal = true;
  EXPECT_TRUE(std::holds_alternative<Matched>(matched(rows, local)));
}

class BodyTest : public testing::Test {
 protected:
  int status(const std::string& type, const std::string& body) {
    Row row;
    row.body = "Call";
    const Request request{.method = "POST", .target = {}, .headers = {{"content-type", type}}, .body = body};
    const auto found = bodyOf(row, request);
    const auto* const refusal = std::get_if<Response>(&found);
    return refusal != nullptr ? refusal->status : 200;
  }
};

TEST_F(BodyTest, IsAJsonObject) { EXPECT_EQ(status("application/json; charset=utf-8", R"({"a":1})"), 200); }

TEST_F(BodyTest, OfAnotherTypeIsRefused) {
  EXPECT_EQ(status("text/plain", "{}"), 415);
  EXPECT_EQ(status("", "{}"), 415);
}

TEST_F(BodyTest, ThatIsNoJsonIsRefused) {
  for (const char* text : {"", "{", "{} x", "{\"a\":}", "\xFF"})
    EXPECT_EQ(status("application/json", text), 400) << text;
}

TEST_F(BodyTest, ThatIsNoObjectIsRefused) {
  for (const char* text : {"[]", "1", "null", "\"a\""}) EXPECT_EQ(status("application/json", text), 422) << text;
}

TEST_F(BodyTest, OfGreatDepthCostsNothing) { EXPECT_EQ(status("application/json", std::string(kMostBody, '[')), 400); }

}  // namespace
}  // namespace zel::gateway
