#pragma once

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zel::manual {

// One option or argument, as people and shells have to know it.
struct Entry {
  std::vector<std::string> names;  // as they are typed, "-o" and "--output"; an argument has one, for people
  std::string value;               // what an option's value is called; empty for a flag, and for an argument
  std::vector<std::string> words;  // all that it may be, or the usual ones; empty where that cannot be told
  std::string help;
  std::string environment;  // the variable that stands in for it, if any
  bool required = false;
  bool repeated = false;

  // What the value or the argument is called, by which files and folders are told from other text.
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

// What shells are to offer: FILE, FILE.png, OUT and PATH are files, DIR is a folder.
ValueKind kindOf(const Entry& entry);

// All options' names, and those alone that a value follows.
std::vector<std::string> optionNames(const CommandText& command);
std::vector<std::string> valuedOptionNames(const CommandText& command);

// The parts with something between each two.
std::string joined(const std::vector<std::string>& parts, const std::string& between);

// The text with each `from` replaced.
std::string replaced(std::string text, const std::string& from, const std::string& to);

}  // namespace zel::manual
