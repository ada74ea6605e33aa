#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "arbor/utils/binary_search_mid.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/text_storage.h"
#include "tests/support/columns.h"

namespace arbor::tests {

using strata::util::number_text;
using strata::util::string_util;

// The number read from a text, or what it is refused with.
template <class T>
static std::string read_integer(const char* text) {
  T result = 77;
  const std::string refusal = message_of([&] { string_util::str2int(text, result); });
  EXPECT_TRUE(refusal.empty() || result == T{77}) << text;
  return refusal.empty() ? std::to_string(result) : refusal;
}

TEST(Text, IntegersAreReadInTheirRangeAndRefusedByName) {
  // The text, and what it is as int and, if that differs, as unsigned int: a number or a part of
  // the message.
  for (const std::string row :
       {"  42,42,42", "+07,7,7", "+,0,0", "-,0,a negative number provided.",
        "2147483647,2147483647,2147483647", "-2147483647,-2147483647,a negative number provided.",
        "2147483648,overflow,2147483648", "-2147483648,overflow,a negative number provided.",
        "4294967295,overflow,4294967295", "4294967296,overflow", "4294967300,overflow",
        "42949672950x,overflow", ",not an int", "   ,not an int", "42 ,_not an int",
        "\t4,_not an int", " 0x10,_not an int", "+-1,_not an int", "4 2,_not an int"}) {
    const texts r = listed(row);
    const auto is = [&](const std::string& expected) {
      return testing::AnyOf(expected, "str2int:: " + expected, r[0] + ": " + expected);
    };
    EXPECT_THAT(read_integer<int>(r[0].c_str()), is(r[1]));
    EXPECT_THAT(read_integer<unsigned int>(r[0].c_str()), is(r.back()));
  }
  EXPECT_EQ(read_integer<int>(nullptr), "str2int:: cannot convert a NULL string.");
}

TEST(Text, NumbersAreReadAsStrtodReadsThem) {
  std::mt19937 random(9);
  for (int i = 0; i < 40000; ++i) {
    std::string text(random() % 21, '0');
    for (char& c : text) c = "0123456789012345678901234567890123456789.-ex "[random() % 45];
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    double value = 77;
    EXPECT_EQ(strata::util::read_number(text.c_str(), value), !text.empty() && *end == '\0')
        << text;
    EXPECT_TRUE(value == 77 || std::memcmp(&value, &expected, sizeof value) == 0) << text;
  }
}

TEST(Text, NumbersArePrintedInFullWithoutTrailingZeros) {
  std::string printed = number_text(INT_MIN) + number_text(UINT_MAX);
  for (const double value : {-2.5, -0.0, 1e-31, 1e20, HUGE_VAL, 0.1, 1.0 * 0.1F})
    printed += " " + number_text(value);
  EXPECT_EQ(printed,
            "-21474836484294967295 -2.5 -0 0 100000000000000000000 inf "
            "0.100000000000000005551115123126 0.100000001490116119384765625");
  EXPECT_EQ(number_text(std::numeric_limits<double>::lowest()).size(), 310U);
}

TEST(Text, ThatNoStringCanHoldLacksStorage) {
  std::string older = "older";
  const std::string_view longest("", older.max_size()), longer("", older.max_size() + 1);
  EXPECT_THROW(strata::util::joined({longest, "x"}), std::bad_alloc);
  EXPECT_THROW(strata::util::assign_text(older, longer), std::bad_alloc);
  EXPECT_EQ(strata::util::joined({"a", "", older}), "aolder");
}

TEST(Text, HighBytesComeBeforeTheEndOfAText) {
  const std::vector<const char*> ascending{"\x80", "\xff", "", "a\xe9", "a", "a ", "ab", "b"};
  for (std::size_t i = 0; i < 64; ++i) {
    const int order = string_util::compare_signed(ascending[i / 8], ascending[i % 8]);
    EXPECT_TRUE(i / 8 < i % 8 ? order < 0 : i / 8 > i % 8 ? order > 0 : order == 0) << i;
  }
  const std::vector<strata::data_types::datatype<std::string>> sorted{{"a"}, {"a\x80"}};
  auto found = sorted.end();
  EXPECT_TRUE(strata::adt::binary_search_mid(sorted.begin(), sorted.end(), sorted[1], found));
  EXPECT_EQ(found, sorted.begin() + 1);
}

}  // namespace arbor::tests
