#include "base/pending_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Table = PendingTable<int, std::string, int>;

class PendingTableTest : public testing::Test {
 protected:
  void store(int key, const std::string& handler) {
    table.announce(key);
    EXPECT_EQ(put(key, handler), std::nullopt);
  }

  std::optional<int> put(int key, std::string handler) {
    std::optional<std::string> given(std::move(handler));
    return table.put(key, given);
  }

  Table table;
};

TEST_F(PendingTableTest, GivesAHandlerOutOnce) {
  store(1, "a");
  EXPECT_EQ(table.take(1, 10), "a");
  EXPECT_EQ(table.take(1, 10), std::nullopt);
}

TEST_F(PendingTableTest, ReplacesTheHandlerThatWaits) {
  store(1, "a");
  store(1, "b");
  EXPECT_EQ(table.take(1, 10), "b");
  EXPECT_EQ(table.take(1, 10), std::nullopt);
}

TEST_F(PendingTableTest, GivesBackTheHandlerThatIsReplaced) {
  store(1, "a");
  table.announce(1);
  std::optional<std::string> handler("b");
  EXPECT_EQ(table.put(1, handler), std::nullopt);
  EXPECT_EQ(handler, "a");
  EXPECT_EQ(table.take(1, 10), "b");
}

TEST_F(PendingTableTest, KeepsAnAnswerThatOvertakesTheHandler) {
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_EQ(put(1, "a"), 10);
  EXPECT_EQ(table.take(1, 11), std::nullopt);
}

TEST_F(PendingTableTest, KeepsOneAnswerForEachAnnouncedHandler) {
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_EQ(table.take(1, 11), std::nullopt);
  EXPECT_EQ(put(1, "a"), 10);
  store(1, "b");
  EXPECT_EQ(table.take(1, 12), "b");
}

TEST_F(PendingTableTest, GivesTheAnswerToTheHandlerThatAlreadyWaits) {
  store(1, "a");
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), "a");
  EXPECT_EQ(put(1, "b"), std::nullopt);
  EXPECT_EQ(table.take(1, 11), "b");
}

TEST_F(PendingTableTest, ServesTwoThatAreAnnouncedAtOnce) {
  table.announce(1);
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_EQ(put(1, "a"), 10);
  EXPECT_EQ(put(1, "b"), std::nullopt);
  EXPECT_EQ(table.take(1, 11), "b");
}

TEST_F(PendingTableTest, ForgetsAnAnswerWhoseRequestWasNotSent) {
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  table.withdraw(1);
  store(1, "a");
  EXPECT_EQ(table.take(1, 11), "a");
}

TEST_F(PendingTableTest, KeepsNoSecondAnswerForTheRequestThatIsAnnouncedNext) {
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_EQ(table.take(1, 11), std::nullopt);  // nobody's
  table.announce(1);
  EXPECT_EQ(put(1, "a"), 10);
  EXPECT_EQ(put(1, "b"), std::nullopt);
  EXPECT_EQ(table.take(1, 12), "b");
}

TEST_F(PendingTableTest, ForgetsOneAnswerWhereOneOfTwoRequestsWasNotSent) {
  table.announce(1);
  table.announce(1);
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_EQ(table.take(1, 11), std::nullopt);
  table.withdraw(1);
  table.announce(1);
  EXPECT_EQ(put(1, "a"), 10);
  EXPECT_EQ(put(1, "b"), std::nullopt);
  EXPECT_EQ(table.take(1, 12), "b");
}

TEST_F(PendingTableTest, DropsAnAnswerThatNobodyExpects) {
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  store(1, "a");
  EXPECT_EQ(table.take(1, 11), "a");
}

TEST_F(PendingTableTest, GivesAllOutInTheOrderOfTheirKeys) {
  store(3, "c");
  store(1, "a");
  store(2, "b");
  EXPECT_THAT(table.takeAll(10), ElementsAre("a", "b", "c"));
  EXPECT_THAT(table.takeAll(10), IsEmpty());
}

TEST_F(PendingTableTest, AnswersTheAnnouncedOnesWithTheRest) {
  store(1, "a");
  table.announce(1);
  table.announce(2);
  EXPECT_THAT(table.takeAll(10), ElementsAre("a"));
  EXPECT_EQ(put(1, "b"), 10);
  EXPECT_EQ(put(2, "c"), 10);
}

TEST_F(PendingTableTest, ExpectsWhatHasNoAnswerYet) {
  EXPECT_FALSE(table.isExpected(1));
  table.announce(1);
  EXPECT_TRUE(table.isExpected(1));
  EXPECT_EQ(table.take(1, 10), std::nullopt);
  EXPECT_FALSE(table.isExpected(1));
  store(2, "b");
  EXPECT_TRUE(table.isExpected(2));
}

// A key that counts how many of it are left.
struct CountedKey {
  explicit CountedKey(int key) : number(key) { ++living; }
  CountedKey(const CountedKey& other) : number(other.number) { ++living; }
  CountedKey& operator=(const CountedKey&) = delete;
  ~CountedKey() { --living; }
  bool operator<(const CountedKey& other) const { return number < other.number; }

  int number;
  static inline int living = 0;
};

TEST(PendingTableMemory, KeepsNothingOfAKeyThatIsDone) {
  PendingTable<CountedKey, std::string, int> table;
  const auto store = [&](int number) {
    table.announce(CountedKey(number));
    std::optional<std::string> handler("a");
    EXPECT_EQ(table.put(CountedKey(number), handler), std::nullopt);
  };
  table.announce(CountedKey(1));
  table.withdraw(CountedKey(1));
  store(2);
  EXPECT_EQ(table.take(CountedKey(2), 10), "a");
  store(3);
  EXPECT_EQ(table.takeAll(10).size(), 1u);
  EXPECT_EQ(CountedKey::living, 0);
}

}  // namespace
}  // namespace zel::test
