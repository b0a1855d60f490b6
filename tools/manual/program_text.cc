#include "tools/manual/program_text.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace zel::manual {
namespace {

// "DIR", "SECONDS:FLOAT in [0 - 9]" or ":{start,stop}": the name, then the allowed values.
std::vector<std::string> choicesIn(const std::string& type) {
  const auto begin = type.find(":{"), end = type.rfind('}');
  if (begin == std::string::npos || end == std::string::npos) return {};
  std::vector<std::string> choices;
  std::istringstream list(type.substr(begin + 2, end - begin - 2));
  for (std::string choice; std::getline(list, choice, ',');) choices.push_back(choice);
  return choices;
}

std::vector<std::string> wordsFor(const Entry& entry, const std::string& type, const Words& words) {
  const auto known = words.find(entry.called());
  return known != words.end() ? known->second : choicesIn(type);
}

Entry describeEntry(const CLI::Option& option, const Words& words) {
  Entry entry;
  const std::string type = option.get_type_name();
  if (option.get_positional()) {
    entry.names = {option.get_name(true, false)};
  } else {
    for (const auto& name : option.get_snames()) entry.names.push_back("-" + name);
    for (const auto& name : option.get_lnames()) entry.names.push_back("--" + name);
    if (option.get_items_expected_max() > 0) entry.value = type.substr(0, type.find(':'));
  }
  entry.words = wordsFor(entry, type, words);
  entry.help = option.get_description();
  entry.environment = option.get_envname();
  entry.required = option.get_required();
  const bool takesMany = option.get_items_expected_max() > 1;
  entry.repeated = takesMany || option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  return entry;
}

CommandText describeCommand(const CLI::App& app, const Words& words) {
  CommandText command{app.get_name(), app.get_description(), app.get_footer(), {}, {}, {}};
  const bool isProgram = app.get_parent() == nullptr;
  for (const CLI::Option* option : app.get_options()) {
    if (option == app.get_help_ptr() && !isProgram) continue;  // every command has it; described once for the program
    (option->get_positional() ? command.arguments : command.options).push_back(describeEntry(*option, words));
  }
  for (const CLI::App* inner : app.get_subcommands([](const CLI::App*) { return true; })) {
    command.commands.push_back(describeCommand(*inner, words));
  }
  return command;
}

}  // namespace

ProgramText describeProgram(const CLI::App& app, const Words& words) {
  return {describeCommand(app, words), app.version()};
}

ValueKind kindOf(const Entry& entry) {
  const std::string& called = entry.called();
  if (called == "DIR") return ValueKind::folder;
  return called.starts_with("FILE") || called == "OUT" || called == "PATH" ? ValueKind::file : ValueKind::text;
}

std::vector<std::string> optionNames(const CommandText& command, bool onlyValued) {
  std::vector<std::string> names;
  for (const Entry& option : command.options) {
    if (!onlyValued || !option.value.empty()) names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::string joined(const std::vector<std::string>& parts, const std::string& between) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : between) + part;
  return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

}  // namespace zel::manual
