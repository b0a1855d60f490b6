#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zel::gateway {

inline constexpr std::size_t kShortestToken = 16;  // characters

// A token that nobody can guess: 128 bits of the system's random numbers, as text for an address.
//
// Errors: nothing where the system gives none.
std::optional<std::string> makeToken();

// The token in a file: its first line, without space around it.
//
// Errors: nothing; `error` names the file and the fault. A token of fewer than kShortestToken characters is refused, and
//         one with other characters than letters, digits, "-", ".", "_" and "~", which an address would change.
std::optional<std::string> readToken(const std::string& path, std::string& error);

}  // namespace zel::gateway
