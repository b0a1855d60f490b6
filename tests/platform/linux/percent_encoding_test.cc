#include "platform/linux/percent_encoding.h"

#include <gtest/gtest.h>

namespace zel::platform {
namespace {

TEST(PercentEncoding, KeepsWhatIsPlain) { EXPECT_EQ(percentEncoded("aZ09-_.~"), "aZ09-_.~"); }

TEST(PercentEncoding, EncodesEveryOtherByte) { EXPECT_EQ(percentEncoded("a /%\xC3\xBC"), "a%20%2F%25%C3%BC"); }

}  // namespace
}  // namespace zel::platform
