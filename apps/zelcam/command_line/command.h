#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

// The kind of an option's or an argument's value.
enum class Kind { flag, text, number, integer };

// One option of a command.
struct Option {
  std::string_view name;         // as typed, "--seconds" or "-o,--output"
  std::string_view placeholder;  // its value's name, for people
  std::string_view help;
  Kind kind = Kind::text;
  double least = 0;  // of a number or an integer
  double most = 0;
  bool repeated = false;  // may be given several times
};

// One argument of a command. `choices` are all allowed values, if any.
struct Argument {
  std::string_view name;
  std::string_view help;
  bool required = true;
  bool repeated = false;  // takes all remaining words; only the last argument may
  std::vector<std::string_view> choices = {};
};

// The values of a command's options and arguments, checked against their description.
class Values {
 public:
  // The values of an option or argument, for writing; a given flag has a value too.
  std::vector<std::string>& slot(std::string_view name);

  bool has(std::string_view name) const;
  // Empty if not given.
  std::string text(std::string_view name) const;
  std::optional<double> number(std::string_view name) const;
  std::optional<std::int64_t> integer(std::string_view name) const;
  std::vector<std::string> list(std::string_view name) const;

 private:
  std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

// One run of a command.
struct Invocation {
  Settings settings;
  Values values;
};

// One command of the program. Help and all other descriptions are generated from these.
struct Command {
  std::string_view name;
  std::string_view summary;
  std::string_view example;
  std::vector<Argument> arguments;
  std::vector<Option> options;
  int (*run)(const Invocation& invocation);  // returns the exit status
};

}  // namespace zel::app
