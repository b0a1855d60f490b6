#include "tools/manual/forms.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zel::manual {
namespace {

// Words and options contain no single quotes.
std::string offerWords(const std::vector<std::string>& words) {
  return "mapfile -t COMPREPLY < <(compgen -W '" + joined(words, " ") + "' -- \"$word\")";
}

std::string offer(const Entry& entry) {
  if (!entry.words.empty()) return offerWords(entry.words);
  const std::string names = "compopt -o filenames 2>/dev/null\n      mapfile -t COMPREPLY < <(compgen ";
  switch (kindOf(entry)) {
    case ValueKind::file:
      return names + "-f -- \"$word\")";
    case ValueKind::folder:
      return names + "-d -- \"$word\")";
    case ValueKind::text:
      break;
  }
  return "";
}

// A line of a case; empty without completions.
std::string line(const std::string& text) { return text.empty() ? "" : "      " + text + "\n"; }

// "photo:-o | photo:--output": an option after its command; options of the program itself may follow any command.
std::string pattern(const std::string& command, const std::vector<std::string>& names) {
  std::string alternatives;
  for (const std::string& name : names) {
    if (!alternatives.empty()) alternatives += " | ";
    alternatives.append(command).append(":").append(name);
  }
  return alternatives;
}

// Options with the same values are grouped, in the order of the first of each kind.
using Cases = std::vector<std::pair<std::string, std::vector<std::string>>>;

void addCase(Cases& cases, const std::string& offered, const std::string& alternatives) {
  const auto same = std::ranges::find(cases, offered, &Cases::value_type::first);
  auto& known = same != cases.end() ? *same : cases.emplace_back(offered, std::vector<std::string>());
  known.second.push_back(alternatives);
}

std::string caseText(const Cases& cases) {
  std::string text;
  for (const auto& [offered, patterns] : cases) {
    text += "    " + joined(patterns, " | \\\n      ") + ")\n" + line(offered) + "      return ;;\n";
  }
  return text;
}

std::string valueCases(const CommandText& program) {
  Cases cases;
  const auto add = [&cases](const std::string& scope, const CommandText& command) {
    for (const Entry& option : command.options) {
      if (!option.value.empty()) addCase(cases, offer(option), pattern(scope, option.names));
    }
  };
  add("*", program);
  for (const CommandText& command : program.commands) add(command.name, command);
  return caseText(cases);
}

void addArguments(Cases& cases, const CommandText& command) {
  for (std::size_t i = 0; i < command.arguments.size(); ++i) {
    const std::string offered = offer(command.arguments[i]);
    if (offered.empty()) continue;
    addCase(cases, offered, command.name + ":" + std::to_string(i));
  }
}

std::string argumentCases(const CommandText& program) {
  Cases cases;
  std::vector<std::string> names;
  for (const CommandText& command : program.commands) {
    addArguments(cases, command);
    names.push_back(command.name);
  }
  if (!names.empty()) addCase(cases, offerWords(names), ":0");
  return caseText(cases);
}

std::string skippedOptions(const CommandText& program) {
  std::vector<std::string> patterns;
  const auto add = [&patterns](const std::string& scope, const CommandText& command) {
    const std::string alternatives = pattern(scope, optionNames(command, true));
    if (!alternatives.empty()) patterns.push_back(alternatives);
  };
  add("*", program);
  for (const CommandText& command : program.commands) add(command.name, command);
  return joined(patterns, " | \\\n        ");
}

// Scans the words before the cursor for the command and the number of its arguments.
std::string walk(const CommandText& program) {
  std::string text = "  for ((i = 1; i < COMP_CWORD; ++i)); do\n    case $command:${COMP_WORDS[i]} in\n";
  text += "      " + skippedOptions(program) + ")\n        ((++i))\n";
  text += "        [[ ${COMP_WORDS[i]} == = ]] && ((++i)) ;;\n      *:-*) ;;\n";
  if (!program.commands.empty()) text += "      :*) command=${COMP_WORDS[i]} ;;\n";
  return text + "      *) ((++place)) ;;\n    esac\n  done\n";
}

std::string optionCases(const CommandText& program) {
  std::string text = "  case $command in\n";
  const std::vector<std::string> everywhere = optionNames(program);
  for (const CommandText& command : program.commands) {
    std::vector<std::string> names = optionNames(command);
    for (const std::string& name : everywhere) {
      if (name != "--version" && name != "--describe") names.push_back(name);
    }
    text += "    " + command.name + ") " + offerWords(names) + " ;;\n";
  }
  return text + "    *) " + offerWords(everywhere) + " ;;\n  esac\n";
}

}  // namespace

std::string bashCompletion(const ProgramText& text) {
  const CommandText& program = text.program;
  const std::string function = "_" + replaced(program.name, "-", "_");
  std::string script = "# Completion of " + program.name + " for bash, made from what the program says of itself.\n\n";
  script += function + "() {\n";
  script += "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' place=0 i\n";
  script += "  COMPREPLY=()\n";
  script += "  # bash takes \"--option=value\" for three words.\n";
  script += "  if [[ $word == = ]]; then\n    word=''\n  elif [[ $before == = ]]; then\n";
  script += "    before=${COMP_WORDS[COMP_CWORD - 2]}\n  fi\n" + walk(program);
  script += "  case $command:$before in\n" + valueCases(program) + "  esac\n";
  const std::string places = argumentCases(program);
  if (!places.empty()) script += "  [[ $word == -* ]] || case $command:$place in\n" + places + "  esac\n";
  return script + optionCases(program) + "}\n\ncomplete -F " + function + " " + program.name + "\n";
}

}  // namespace zel::manual
