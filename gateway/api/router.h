#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "gateway/api/row.h"

namespace zel::gateway {

// The row that answers a request, with the parameters of its path.
struct Matched {
  const Row* row = nullptr;
  std::map<std::string, std::string, std::less<>> parameters;
};

// The row of a request, or what refuses it: 404 where no row has the path, 405 with the methods where one has.
// HEAD is answered as GET.
std::variant<Matched, Response> matched(const std::vector<Row>& rows, const Request& request);

// The body of a request that a row takes, or what refuses it: 415, 400, 422.
std::variant<nlohmann::json, Response> bodyOf(const Row& row, const Request& request);

}  // namespace zel::gateway
