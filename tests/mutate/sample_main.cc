// Prints what the sample computes; the expected outputs stand in candidates_test.py.
#include <cstdio>

int main() {
  Counter counter{};
  counter.grow<2>();
  std::printf("%d%d %d %d %d %d", isSmall(2), isSmall(3), pick({4, 6}, 7), pick({4, 6}, 5), pick({4, 6}, 1),
              pick({4, 6}, 0));
  std::printf(" %d %d %d%d\n", calls, counter.count, isOdd(3), isOdd(4));
}
