#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/http/request.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// A request that a row answers.
struct RowCall {
  const Request& request;
  std::map<std::string, std::string, std::less<>> parameters;  // of the path
  nlohmann::json body;                                         // an object where the row takes a body

  const std::string& parameter(std::string_view name) const { return parameters.find(name)->second; }
};

// One row of the table: a method and a path, what they do, and what is said of them in the description.
struct Row {
  // schema: the name of one of schemas(); empty for none.
  struct Answer {
    int status = 200;
    std::string type = "application/json";
    std::string schema = {};
    std::string what = {};
  };
  struct Query {
    std::string name, what;
    nlohmann::ordered_json schema;
  };

  std::string method;
  std::string path;  // "/api/v1/cameras/{serial}"; a parameter is a whole segment
  std::string name;  // of the operation, unique
  std::string summary;
  std::vector<Answer> answers;
  // Thread: the server's. It must not wait: a later answer is given by a copy of `respond`.
  std::function<void(const RowCall& call, const Respond& respond)> handle;
  std::string body = {};  // the schema of what it takes; empty: no body
  std::vector<Query> query = {};
  bool isLocal = false;  // answered on gateway.sock alone, and not described
};

// Bytes that the body of a call may have.
inline constexpr std::size_t kMostBody = std::size_t{256} << 10;

}  // namespace zel::gateway
