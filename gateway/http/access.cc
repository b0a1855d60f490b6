#include "gateway/http/access.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cctype>

namespace zel::gateway {
namespace {

constexpr std::string_view kTokenCookie = "zel_token";

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return result;
}

bool isPort(std::string_view text) {
  return !text.empty() && text.size() <= 5 &&
         std::ranges::all_of(text, [](unsigned char letter) { return std::isdigit(letter) != 0; });
}

// The host without its port; nothing where that is malformed.
std::optional<std::string> hostIn(std::string_view header) {
  std::size_t end = header.find(':');
  if (!header.empty() && header.front() == '[') {
    end = header.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    ++end;
  }
  const std::string_view host = header.substr(0, end);
  if (host.size() < header.size() && (header[host.size()] != ':' || !isPort(header.substr(host.size() + 1)))) {
    return std::nullopt;
  }
  return lowered(host);
}

bool isAddress(const std::string& host) {
  in_addr four{};
  in6_addr six{};
  if (::inet_pton(AF_INET, host.c_str(), &four) == 1) return true;
  if (host.size() < 2 || host.front() != '[' || host.back() != ']') return false;
  return ::inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), &six) == 1;
}

bool isSameOrigin(std::string_view origin, std::string_view host) {
  const std::string lower = lowered(origin), own = lowered(host);
  return lower == "http://" + own || lower == "https://" + own;
}

// Pages of others may lead here, but may not have anything fetched for them.
bool isForeign(const Request& request, bool isPublic) {
  const std::string_view origin = request.header("origin");
  if (!origin.empty()) return !isSameOrigin(origin, request.header("host"));
  const std::string_view site = request.header("sec-fetch-site");
  return !isPublic && !site.empty() && site != "same-origin" && site != "none";
}

bool hasToken(const Request& request, std::string_view token) {
  constexpr std::string_view kBearer = "bearer ";
  const std::string_view authorization = request.header("authorization");
  if (lowered(authorization.substr(0, kBearer.size())) == kBearer) {
    return isSameSecret(authorization.substr(kBearer.size()), token);
  }
  const auto cookie = cookieIn(request.header("cookie"), kTokenCookie);
  return isSameSecret(cookie.value_or(""), token);
}

Response unauthorized() {
  Response response = problem(401, "this needs the token that the server printed when it started");
  response.headers.emplace_back("WWW-Authenticate", "Bearer");
  return response;
}

}  // namespace

bool isOwnHost(std::string_view header, const AccessRules& rules) {
  const auto host = hostIn(header);
  if (!host || host->empty()) return false;
  return isAddress(*host) || *host == "localhost" || std::ranges::count(rules.hosts, *host) != 0;
}

bool isSameSecret(std::string_view given, std::string_view secret) {
  std::size_t different = given.size() ^ secret.size();
  for (std::size_t at = 0; at < given.size(); ++at) {
    const char expected = secret.empty() ? '\0' : secret[at % secret.size()];
    different |= static_cast<unsigned char>(given[at] ^ expected);
  }
  return different == 0;
}

std::optional<Response> refusalOf(const Request& request, const AccessRules& rules, bool isPublic) {
  if (request.isLocal) return std::nullopt;
  if (!isOwnHost(request.header("host"), rules)) {
    return problem(421, "this server does not have the name in the request's Host; --host makes it known");
  }
  if (isForeign(request, isPublic)) return problem(403, "the request comes from a page of another origin");
  if (!isPublic && !rules.token.empty() && !hasToken(request, rules.token)) return unauthorized();
  return std::nullopt;
}

}  // namespace zel::gateway
