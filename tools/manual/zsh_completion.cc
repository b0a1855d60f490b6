#include "tools/manual/forms.h"

namespace zel::manual {
namespace {

std::string quoted(const std::string& text) { return "'" + replaced(text, "'", "'\\''") + "'"; }

// A specification for _arguments: brackets end the description, a colon ends a field.
std::string bracketed(const std::string& help) {
  return "[" + replaced(replaced(replaced(help, "\\", "\\\\"), "[", "\\["), "]", "\\]") + "]";
}

std::string action(const Entry& entry) {
  const std::string called = replaced(entry.called(), ":", "\\:");
  if (!entry.words.empty()) return ":" + called + ":(" + joined(entry.words, " ") + ")";
  switch (kindOf(entry)) {
    case ValueKind::file:
      return ":" + called + ":_files";
    case ValueKind::folder:
      return ":" + called + ":_files -/";
    case ValueKind::text:
      break;
  }
  return ":" + called + ": ";
}

std::string optionSpecifications(const Entry& option) {
  std::string text;
  const std::string before = option.repeated ? "*" : "(" + joined(option.names, " ") + ")";
  for (const std::string& name : option.names) {
    const bool takesEquals = !option.value.empty() && name.starts_with("--");
    text += "    " +
            quoted(before + name + (takesEquals ? "=" : "") + bracketed(option.help) +
                   (option.value.empty() ? "" : action(option))) +
            "\n";
  }
  return text;
}

std::string optionSpecifications(const CommandText& command) {
  std::string text;
  for (const Entry& option : command.options) text += optionSpecifications(option);
  return text;
}

std::string argumentSpecifications(const CommandText& command) {
  std::string text;
  for (const Entry& argument : command.arguments) {
    const std::string count = argument.repeated ? "*" : argument.required ? "" : ":";
    text += "    " + quoted(count + action(argument)) + "\n";
  }
  return text;
}

std::string commandCase(const CommandText& command) {
  return "    " + command.name + ") specifications=(\n" + optionSpecifications(command) +
         argumentSpecifications(command) + "    ) ;;\n";
}

std::string commandList(const CommandText& program) {
  std::string text = "  commands=(\n";
  for (const CommandText& command : program.commands) {
    text += "    " + quoted(command.name + ":" + command.summary) + "\n";
  }
  return text + "  )\n";
}

std::string withCommands(const CommandText& program) {
  std::string text = "  local -a commands specifications\n" + commandList(program);
  text += "  _arguments -C $everywhere ': :->command' '*:: :->arguments'\n";
  text += "  case $state in\n  command)\n    _describe command commands ;;\n  arguments)\n    case $words[1] in\n";
  for (const CommandText& command : program.commands) text += commandCase(command);
  return text + "    esac\n    _arguments $everywhere $specifications ;;\n  esac\n";
}

}  // namespace

std::string zshCompletion(const ProgramText& text) {
  const CommandText& program = text.program;
  const std::string function = "_" + program.name;
  std::string script = "#compdef " + program.name + "\n";
  script += "# Completion of " + program.name + " for zsh, made from what the program says of itself.\n\n";
  script +=
      function + "() {\n  local curcontext=$curcontext state line\n  typeset -A opt_args\n  local -a everywhere\n";
  script += "  everywhere=(\n" + optionSpecifications(program) + "  )\n";
  script += program.commands.empty() ? "  _arguments $everywhere\n" : withCommands(program);
  script += "}\n\n";
  return script + "if [[ $funcstack[1] == " + function + " ]]; then\n  " + function + " \"$@\"\nelse\n  compdef " +
         function + " " + program.name + "\nfi\n";
}

}  // namespace zel::manual
