#include "tools/manual/describe_option.h"

#include <CLI/CLI.hpp>

#include <string>
#include <utility>

#include "tools/manual/forms.h"

namespace zel::manual {

void addDescribeOption(CLI::App& app, Words words) {
  const auto describe = [&app, words = std::move(words)](const std::string& form) {
    const ProgramText text = describeProgram(app, words);
    std::string description = form == "man"    ? manualPage(text)
                              : form == "bash" ? bashCompletion(text)
                                               : zshCompletion(text);
    if (description.ends_with('\n')) description.pop_back();  // the program adds the newline
    throw CLI::CallForVersion(std::move(description), 0);     // prints only its text, and ends with status 0
  };
  app.add_option_function<std::string>("--describe", describe,
                                       "print the manual page, or that shell's completion, and end")
      ->type_name("FORM")
      ->check(CLI::IsMember({"man", "bash", "zsh"}));
}

}  // namespace zel::manual
