#include "tools/manual/forms.h"

#include <cctype>
#include <sstream>

namespace zel::manual {
namespace {

// Literal text: every '-' is a hyphen-minus.
std::string literal(const std::string& text) {
  std::string line = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
  return line.starts_with('.') || line.starts_with('\'') ? "\\&" + line : line;
}

// Prose: only options keep the hyphen-minus.
std::string prose(const std::string& text) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool begins = i == 0 || text[i - 1] == ' ' || text[i - 1] == '-' || text[i - 1] == '(';
    if (text[i] == '-' && begins)
      escaped += "\\-";
    else if (text[i] == '\\')
      escaped += "\\e";
    else
      escaped += text[i];
  }
  return escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" + escaped : escaped;
}

std::string bold(const std::string& text) { return "\\fB" + literal(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + literal(text) + "\\fR"; }

std::string upper(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return text;
}

// A summary for the NAME section, which is not a sentence.
std::string asName(std::string summary) {
  if (summary.ends_with('.')) summary.pop_back();
  if (!summary.empty()) summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
  return summary;
}

// A summary as a sentence.
std::string asSentence(std::string summary) {
  if (!summary.empty()) summary[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(summary[0])));
  return summary + '.';
}

std::string entryText(const Entry& entry) {
  std::vector<std::string> names;
  for (const std::string& name : entry.names)
    names.push_back(entry.names.front()[0] == '-' ? bold(name) : italic(name));
  std::string text = ".TP\n" + joined(names, ", ");
  if (!entry.value.empty()) text += " " + italic(entry.value);
  text += "\n" + prose(entry.help);
  if (entry.repeated) text += "; may be repeated";
  if (!entry.environment.empty()) text += "; the variable " + bold(entry.environment) + " stands in for it";
  return text + "\n";
}

std::string entries(const std::vector<Entry>& list) {
  std::string text;
  for (const Entry& entry : list) text += entryText(entry);
  return text;
}

std::string argumentForms(const CommandText& command) {
  std::string text;
  for (const Entry& argument : command.arguments) {
    const std::string name = italic(argument.names.front()) + (argument.repeated ? "..." : "");
    text += argument.required ? " " + name : " [" + name + "]";
  }
  return text;
}

std::string verbatim(const std::string& line) { return ".PP\n.nf\n.RS 4\n" + literal(line) + "\n.RE\n.fi\n"; }

// One command, under its own heading.
std::string commandText(const std::string& program, const CommandText& command) {
  std::string text = ".SS " + literal(command.name) + "\n";
  text += bold(program + " " + command.name) + (command.options.empty() ? "" : " [" + italic("OPTION") + "]...");
  text += argumentForms(command) + "\n.PP\n" + prose(asSentence(command.summary)) + "\n";
  text += entries(command.arguments) + entries(command.options);
  const std::string example = "Example: ";
  if (const auto at = command.notes.find(example); at != std::string::npos) {
    text += ".PP\nExample:\n" + verbatim(command.notes.substr(at + example.size()));
  }
  return text;
}

// The end of the program's help: a line that is not indented is a heading, possibly with text after the colon.
std::string notes(const std::string& text) {
  std::string page;
  std::istringstream lines(text);
  bool inBlock = false;
  for (std::string line; std::getline(lines, line);) {
    const bool indented = line.starts_with(' ');
    if (inBlock && !indented) page += ".fi\n";
    if (indented) page += literal(line.substr(line.find_first_not_of(' '))) + "\n";
    inBlock = indented;
    if (indented || line.empty()) continue;
    const auto colon = line.find(':');
    page += ".SH " + upper(line.substr(0, colon)) + "\n.nf\n";
    inBlock = true;
    if (colon + 2 < line.size()) page += literal(line.substr(colon + 2)) + "\n";
  }
  return page + (inBlock ? ".fi\n" : "");
}

}  // namespace

std::string manualPage(const ProgramText& text) {
  const CommandText& program = text.program;
  std::string page = ".TH " + upper(literal(program.name)) + " 1 \"\" \"" + text.version + "\" \"User Commands\"\n";
  page += ".SH NAME\n" + literal(program.name) + " \\- " + prose(asName(program.summary)) + "\n";
  page += ".SH SYNOPSIS\n" + bold(program.name) + " [" + italic("OPTION") + "]...";
  page +=
      program.commands.empty() ? argumentForms(program) : " " + italic("COMMAND") + " [" + italic("ARGUMENT") + "]...";
  page += "\n.SH OPTIONS\n" + entries(program.options);
  if (!program.commands.empty()) page += ".SH COMMANDS\nThe options above may stand behind a command as well.\n";
  for (const CommandText& command : program.commands) page += commandText(program.name, command);
  return page + notes(program.notes);
}

}  // namespace zel::manual
