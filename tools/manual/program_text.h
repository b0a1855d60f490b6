#pragma once

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zel::manual {

// One option or argument, for people and shells.
struct Entry {
  std::vector<std::string> names;  // as typed, "-o" and "--output"; an argument has one, for people
  std::string value;               // the name of an option's value; empty for a flag, and for an argument
  std::vector<std::string> words;  // all possible values, or the usual ones; empty if unknown
  std::string help;
  std::string environment;  // the variable that replaces it, if any
  bool required = false;
  bool repeated = false;

  // The name of the value or the argument, which distinguishes files and folders from other text.
  const std::string& called() const { return value.empty() ? names.front() : value; }
};

// A program, or one of its commands.
struct CommandText {
  std::string name;
  std::string summary;
  std::string notes;  // the end of its help: "Heading:" and indented lines, or "Example: " and a command line
  std::vector<Entry> arguments;
  std::vector<Entry> options;
  std::vector<CommandText> commands;
};

struct ProgramText {
  CommandText program;
  std::string version;  // with the program's name
};

// Words for values, by what the value is called: {"CODE", {"0", "1"}}.
using Words = std::map<std::string, std::vector<std::string>>;

// Reads a program's description of its command line.
ProgramText describeProgram(const CLI::App& app, const Words& words);

enum class ValueKind { text, file, folder };

// The kind of completion: FILE, FILE.png, OUT and PATH are files, DIR is a folder.
ValueKind kindOf(const Entry& entry);

// The names of all options, or of those with a value.
std::vector<std::string> optionNames(const CommandText& command, bool onlyValued = false);

// The parts with a separator between them.
std::string joined(const std::vector<std::string>& parts, const std::string& between);

// The text with each `from` replaced.
std::string replaced(std::string text, const std::string& from, const std::string& to);

}  // namespace zel::manual
