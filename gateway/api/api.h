#pragma once

#include <cstddef>
#include <variant>
#include <vector>

#include "gateway/api/row.h"
#include "gateway/http/access.h"
#include "gateway/http/server.h"

namespace zel::gateway {

// Whether a request asks for the page, for which nobody needs a token: whatever stands beside the API and the metrics.
bool isPublic(const Request& request);

// The table of rows as a service, behind the rules of access.
class Api final : public Service {
 public:
  Api(AccessRules rules, std::vector<Row> rows);

  std::variant<Response, std::size_t> admit(const Request& head) override;
  void answer(const Request& request, Respond respond) override;

 private:
  const AccessRules rules_;
  const std::vector<Row> rows_;
};

}  // namespace zel::gateway
