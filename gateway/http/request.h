#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::gateway {

// What a request names: the segments of its path and its query, percent-decoded.
struct Target {
  std::vector<std::string> path;  // empty for "/"; a path that ends with "/" has an empty last segment
  std::map<std::string, std::string, std::less<>> query;

  bool operator==(const Target&) const = default;
};

inline constexpr std::size_t kMostTarget = 4096;  // bytes

// The target of a request line. A segment may hold any character but a control character; whoever makes a file's name
// of it checks that it is one.
//
// Errors: nothing for what is not a path of this server: no "/" at its front, a broken percent sign, a control
//         character, no UTF-8, more than kMostTarget bytes.
std::optional<Target> parseTarget(std::string_view text);

// One request, as a value.
struct Request {
  std::string method;
  Target target;
  std::map<std::string, std::string, std::less<>> headers;  // names in lower case; of a repeated one the last
  std::string body;
  bool isLocal = false;  // came by gateway.sock, whose mode has let nobody else in

  // Empty where there is none.
  std::string_view header(std::string_view name) const;
};

// The value of a cookie; nothing where there is none of that name.
std::optional<std::string_view> cookieIn(std::string_view header, std::string_view name);

// The media type of a Content-Type, in lower case and without its parameters.
std::string mediaTypeIn(std::string_view contentType);

}  // namespace zel::gateway
