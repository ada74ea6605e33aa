#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>

#include "arbor/utils/binary_search_mid.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"
#include "arbor/utils/text_storage.h"
#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

using strata::util::number_text;
using strata::util::read_number;
using strata::util::string_util;

// The number read from a text, or why there is none.
template <class T>
std::string read_integer(const char* text) {
  T result = 77;
  const std::string refusal = message_of([&] { string_util::str2int(text, result); });
  EXPECT_TRUE(refusal.empty() || result == T{77}) << text;
  return refusal.empty() ? std::to_string(result) : refusal;
}

TEST(Text, IntegersAreReadInTheirRangeAndRefusedByName) {
  // The text, and what it is as int and as unsigned int.
  for (const std::string row :
       {"  42,42,42", "+07,7,7", "+,0,0", " -7,-7,-", "-,0,-", "2147483647,2147483647,2147483647",
        "-2147483647,-2147483647,-", "2147483648,>,2147483648", "-2147483648,>,-",
        "4294967295,>,4294967295", "4294967296,>,>", "4294967300,>,>", "42949672950x,>,>"}) {
    texts r = listed(row);
    for (std::string& value : r) {
      if (&value != &r[0] && value == ">") value = "str2int:: overflow";
      if (&value != &r[0] && value == "-") value = "str2int:: a negative number provided.";
    }
    EXPECT_EQ(read_integer<int>(r[0].c_str()), r[1]) << row;
    EXPECT_EQ(read_integer<unsigned int>(r[0].c_str()), r[2]) << row;
  }
  for (const std::string& text : listed(",   ,42 ,\t4, 0x10,+-1,4 2,a")) {
    const std::string why =
        text.find_first_not_of(' ') == std::string::npos ? ": not an int" : ": _not an int";
    EXPECT_EQ(read_integer<int>(text.c_str()), text + why);
    EXPECT_EQ(read_integer<unsigned int>(text.c_str()), text + why);
  }
  EXPECT_EQ(read_integer<int>(nullptr), "str2int:: cannot convert a NULL string.");
}

TEST(Text, NumbersAreReadAsStrtodReadsThem) {
  texts numbers = listed(
      ",-,.,-.,5.,.5,-.5,-0,1.2.3,1-,9007199254740992,9007199254740993,0.9007199254740993,"
      "999999999999999999,9999999999999999999, ,\t2.5,+2.5,25e-1,0x1.4p1,2.6 ,x,1e3x,--1,nan,-inf");
  std::mt19937 random(9);
  for (int i = 0; i < 20000; ++i) {
    std::string text(1 + random() % 20, '0');
    for (char& c : text) c = static_cast<char>('0' + random() % 10);
    if (random() % 4 != 0) text.insert(random() % (text.size() + 1), 1, '.');
    numbers.push_back((random() % 3 == 0 ? "-" : "") + text);
  }
  for (const std::string& text : numbers) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    double value = 77;
    EXPECT_EQ(read_number(text.c_str(), value), !text.empty() && *end == '\0') << text;
    EXPECT_TRUE(value == 77 || std::memcmp(&value, &expected, sizeof value) == 0) << text;
  }
}

TEST(Text, NumbersArePrintedInFullWithoutTrailingZeros) {
  EXPECT_EQ(number_text(INT_MIN) + number_text(UINT_MAX), "-21474836484294967295");
  texts printed;
  for (const double value : {-2.5, -0.0, 1e-31, 1e20, HUGE_VAL, 0.1, 1.0 * 0.1F})
    printed.push_back(number_text(value));
  EXPECT_EQ(printed, listed("-2.5,-0,0,100000000000000000000,inf,0.100000000000000005551115123126,"
                            "0.100000001490116119384765625"));
  EXPECT_EQ(number_text(std::numeric_limits<double>::lowest()).size(), 310U);
}

TEST(Text, ThatNoStringCanHoldLacksStorage) {
  std::string older = "older";
  const std::string_view longest("", older.max_size()), longer("", older.max_size() + 1);
  EXPECT_THROW(strata::util::joined({longest, "x"}), std::bad_alloc);
  EXPECT_THROW(strata::util::assign_text(older, longer), std::bad_alloc);
  EXPECT_EQ(strata::util::joined({"a", "", older}), "aolder");
}

TEST(Text, HighBytesComeBeforeTheEndOfATextSoThatTheSearchMayMissIt) {
  const std::vector<const char*> ascending{"\x80", "\xff", "", "a\xe9", "a", "a ", "ab", "b"};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    EXPECT_EQ(string_util::compare_signed(ascending[i], ascending[i]), 0);
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_GT(string_util::compare_signed(ascending[i], ascending[j]), 0) << i << j;
      EXPECT_LT(string_util::compare_signed(ascending[j], ascending[i]), 0) << i << j;
    }
  }
  const std::vector<strata::data_types::datatype<std::string>> sorted{{"a"}, {"a\x80"}};
  auto found = sorted.end();
  EXPECT_FALSE(strata::adt::binary_search_mid(sorted.begin(), sorted.end(), sorted[0], found) ||
               found != sorted.end());
  EXPECT_TRUE(strata::adt::binary_search_mid(sorted.begin(), sorted.end(), sorted[1], found) &&
              &*found == &sorted[1]);
}

}  // namespace
}  // namespace arbor::tests
