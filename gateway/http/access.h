#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/http/request.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// Who is let in.
struct AccessRules {
  std::string token;               // empty: nobody needs one
  std::vector<std::string> hosts;  // names of this server besides addresses and localhost, in lower case
};

// Whether the host of a Host header is this server's. An address always is: a page that had its own name lead here
// still sends that name.
bool isOwnHost(std::string_view host, const AccessRules& rules);

// Whether the texts are equal, in a time that tells nothing of where they differ.
bool isSameSecret(std::string_view given, std::string_view secret);

// Why the request is refused; nothing where it is let in. isPublic: it asks for the page, which has no secrets.
//
// Nothing is said about what the request asks for: without a token all answers are the same.
std::optional<Response> refusalOf(const Request& request, const AccessRules& rules, bool isPublic);

}  // namespace zel::gateway
