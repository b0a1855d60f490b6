#include "gateway/metrics/metrics_text.h"

#include <fmt/format.h>

#include "base/text.h"

namespace zel::gateway {
namespace {

// A label's value or a help text: the format has three escapes, of which a help text has two. What is not UTF-8, which
// a camera may call itself, would cost the whole answer, and is replaced.
std::string escaped(std::string_view text, bool isLabel) {
  std::string result;
  while (!text.empty()) {
    const Character first = firstCharacter(text);
    const std::string_view bytes = text.substr(0, first.bytes);
    text.remove_prefix(first.bytes);
    if (!first.code) {
      result += "\xEF\xBF\xBD";
    } else if (bytes == "\\") {
      result += "\\\\";
    } else if (bytes == "\n") {
      result += "\\n";
    } else if (isLabel && bytes == "\"") {
      result += "\\\"";
    } else {
      result += bytes;
    }
  }
  return result;
}

}  // namespace

void MetricsText::family(std::string_view name, Type type, std::string_view help) {
  name_ = name;
  head_ = fmt::format("# HELP {0} {1}\n# TYPE {0} {2}\n", name, escaped(help, false),
                      type == Type::counter ? "counter" : "gauge");
}

void MetricsText::sample(double value, const Labels& labels) {
  text_ += std::exchange(head_, {});
  text_ += name_;
  for (const char* before = "{"; const auto& [name, content] : labels) {
    text_ += fmt::format("{}{}=\"{}\"", std::exchange(before, ","), name, escaped(content, true));
  }
  // Whole numbers as such: a double holds bytes up to 2^53, which are nine petabytes.
  text_ += fmt::format("{} {:.15g}\n", labels.empty() ? "" : "}", value);
}

}  // namespace zel::gateway
