#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/zelcam/process.h"

namespace zel::test {

// zelcam and zelcam-sim as processes, on a bus folder of their own.
class ZelcamTest : public testing::Test {
 protected:
  using Arguments = std::vector<std::string>;
  using Json = nlohmann::json;

  std::string bus() const { return folder.path() + "/bus"; }

  std::unique_ptr<Process> zelcam(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--accessories", bus()});
    return std::make_unique<Process>(zelcamProgram(), arguments, folder.path());
  }

  // A simulator that is attached when the call returns.
  std::unique_ptr<Process> simulator(Arguments arguments = {}) const {
    arguments.insert(arguments.begin(), {"--accessories", bus()});
    auto process = std::make_unique<Process>(simulatorProgram(), arguments, folder.path());
    EXPECT_TRUE(process->waitForOutput("is attached")) << process->errors();
    return process;
  }

  static std::vector<Json> lines(const Process& process) {
    std::vector<Json> objects;
    std::istringstream text(process.output());
    for (std::string line; std::getline(text, line);) objects.push_back(Json::parse(line));
    return objects;
  }

  TemporaryFolder folder;
};

}  // namespace zel::test
