#include "bench/binding_hosts.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/exchange_batch.h"

namespace zel::bench {
namespace {

// What bench/python_exchanges.py prints.
double numberFromPython(const std::string& arguments) {
  const std::string command =
      "PYTHONPATH=" ZEL_PYTHON_PACKAGE " /usr/bin/python3 " ZEL_BENCH_FOLDER "/python_exchanges.py " + arguments;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> python(popen(command.c_str(), "r"), &pclose);
  std::array<char, 64> text{};
  if (!python || std::fgets(text.data(), text.size(), python.get()) == nullptr) std::abort();
  return std::strtod(text.data(), nullptr);
}

}  // namespace

HostInC::HostInC() {
  zel_options options{};
  options.size = sizeof options;
  options.accessories_folder = bus_.folder().c_str();
  if (zel_open(&options, &camera_, nullptr) != ZEL_OK) std::abort();
}

HostInC::~HostInC() { zel_close(camera_); }

double HostInC::waitedFor() {
  Batch batch;
  bool more = true;
  while (more) {
    batch.begin();
    if (zel_set_white_balance(camera_, 2, 0, nullptr) != ZEL_OK) std::abort();
    more = batch.complete();
  }
  return batch.median();
}

double exchangesInPython(const std::string& way) {
  EchoCamera bus;
  return numberFromPython(way + " " + bus.folder() + " " + std::to_string(kBatch));
}

double importInPython() { return numberFromPython("import"); }

}  // namespace zel::bench
