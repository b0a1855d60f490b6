// What the tests look for mutants in; candidates_test.py has all of them, worked out by hand.
#include <array>

constexpr int kLimit = 3;
static_assert(kLimit == 3);
enum class Kind { first = 1 };
inline int calls = 0;

consteval int twice(int number) { return 2 * number; }

void called() { calls = calls + 1; }

bool isSmall(int number) { return number < kLimit; }

int pick(const std::array<int, 2>& numbers, int which) {
  if (which == 7) return twice(4);
  switch (which) {
    case 5:
      return numbers[0];
    default:
      break;
  }
  if (which > 0 && isSmall(which)) called();
  if constexpr (kLimit > 2) return numbers[1] - which;
}

struct Counter {
  unsigned bits : 4;
  int count = 0;
  template <int kStep>
  void grow() {
    count += kStep;
  }
};

bool isOdd(int number) {
  const int two = 2;
  while (number >= two) number -= two;
  return number == 1 ? true : false;
}
