// Reads command lines of both programs from standard input, one a line, and says which the programs would not take.
// Ends with 1 when there was one. Nothing of what they say is done.

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>

#include "apps/zelcam/command_line/command_tree.h"
#include "simulator/command_line.h"

namespace {

// Why the program would not take the line; empty where it would, and where the line asks for help.
std::string complaint(CLI::App& parser, const std::string& arguments) {
  try {
    parser.parse(arguments, false);
  } catch (const CLI::ParseError& fault) {
    if (fault.get_exit_code() != 0) return fault.what();
  }
  return "";
}

std::string complaint(const std::string& line) {
  const std::string program = line.substr(0, line.find(' ')), arguments = line.substr(program.size());
  if (program == "zelcam") {
    zel::app::CommandTree tree;
    return complaint(tree.parser(), arguments);
  }
  if (program != "zelcam-sim") return "is a command line of neither program";
  zel::simulator::CommandLine commandLine;
  return complaint(commandLine.parser(), arguments);
}

}  // namespace

int main() {
  int status = 0;
  for (std::string line; std::getline(std::cin, line);) {
    const std::string fault = complaint(line);
    if (fault.empty()) continue;
    std::cout << line << ": " << fault << '\n';
    status = 1;
  }
  return status;
}
