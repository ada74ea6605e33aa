#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "arbor/utils/binary_search_mid.h"
#include "arbor/utils/datatype.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"

namespace arbor::tests {
namespace {

using strata::util::number_text;
using strata::util::read_number;
using strata::util::string_util;

// The number read from a text, or why there is none.
template <class T>
std::string read_integer(const char* text) {
  T result = 77;
  try {
    string_util::str2int(text, result);
  } catch (const std::runtime_error& error) {
    return result == T{77} ? error.what() : "changed by a text that was refused";
  }
  return std::to_string(result);
}

TEST(Text, IntegersAreReadInTheirRangeAndRefusedByName) {
  const std::string overflow = "str2int:: overflow",
                    negative = "str2int:: a negative number provided.";
  using row = std::vector<std::string>;  // the text, and what it is as int and as unsigned int
  for (const row& r :
       {row{"  42", "42", "42"}, row{"+07", "7", "7"}, row{"+", "0", "0"},
        row{" -7", "-7", negative}, row{"-", "0", negative},
        row{"2147483647", "2147483647", "2147483647"}, row{"-2147483647", "-2147483647", negative},
        row{"2147483648", overflow, "2147483648"}, row{"-2147483648", overflow, negative},
        row{"4294967295", overflow, "4294967295"}, row{"4294967296", overflow, overflow},
        row{"4294967300", overflow, overflow}, row{"42949672950x", overflow, overflow}}) {
    EXPECT_EQ(read_integer<int>(r[0].c_str()), r[1]);
    EXPECT_EQ(read_integer<unsigned int>(r[0].c_str()), r[2]);
  }
  for (const std::string text : {"", "   ", "42 ", "\t4", " 0x10", "+-1", "4 2", "a"}) {
    const std::string why =
        text.find_first_not_of(' ') == std::string::npos ? ": not an int" : ": _not an int";
    EXPECT_EQ(read_integer<int>(text.c_str()), text + why);
    EXPECT_EQ(read_integer<unsigned int>(text.c_str()), text + why);
  }
  EXPECT_EQ(read_integer<int>(nullptr), "str2int:: cannot convert a NULL string.");
}

TEST(Text, NumbersAreReadAsStrtodReadsThem) {
  std::vector<std::string> texts = {"",
                                    "-",
                                    ".",
                                    "-.",
                                    "5.",
                                    ".5",
                                    "-.5",
                                    "-0",
                                    "1.2.3",
                                    "9007199254740992",
                                    "1-",
                                    "9007199254740993",
                                    "0.9007199254740993",
                                    "999999999999999999",
                                    "9999999999999999999"};
  std::mt19937 random(9);
  for (int i = 0; i < 20000; ++i) {
    std::string text(1 + random() % 20, '0');
    for (char& c : text) c = static_cast<char>('0' + random() % 10);
    if (random() % 4 != 0) text.insert(random() % (text.size() + 1), 1, '.');
    texts.push_back((random() % 3 == 0 ? "-" : "") + text);
  }
  for (const std::string& text : texts) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    double value = 77;
    EXPECT_EQ(read_number(text.c_str(), value), !text.empty() && *end == '\0') << text;
    EXPECT_TRUE(value == 77 || std::memcmp(&value, &expected, sizeof value) == 0) << text;
  }
}

TEST(Text, NumbersArePrintedInFullWithoutTrailingZeros) {
  EXPECT_EQ(number_text(std::numeric_limits<int>::min()) + number_text(4294967295U),
            "-21474836484294967295");
  const auto printed = number_text(-2.5) + "," + number_text(-0.0) + "," + number_text(1e-31) +
                       "," + number_text(1e20);
  EXPECT_EQ(printed + "," + number_text(HUGE_VAL), "-2.5,-0,0,100000000000000000000,inf");
  EXPECT_EQ(number_text(0.1F), "0.100000001490116119384765625");
  EXPECT_EQ(number_text(0.1), "0.100000000000000005551115123126");
  EXPECT_EQ(number_text(std::numeric_limits<double>::lowest()).size(), 310U);
}

TEST(Text, ANumberIsTheWholeText) {
  double value = 0;
  for (const char* text : {" 2.5", "+2.5", "25e-1", "0x1.4p1"})
    EXPECT_TRUE(read_number(text, value) && value == 2.5);
  for (const char* text : {"", " ", "2.6 ", "2,6", "x", "1e3x", "--1"})
    EXPECT_FALSE(read_number(text, value)) << text;
  EXPECT_EQ(value, 2.5);
}

TEST(Text, HighBytesComeBeforeTheEndOfATextSoThatTheSearchMayMissIt) {
  const std::vector<const char*> ascending{"\x80", "\xff", "", "a\xe9", "a", "a ", "ab", "b"};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    EXPECT_EQ(string_util::compare_signed(ascending[i], ascending[i]), 0);
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_GT(string_util::compare_signed(ascending[i], ascending[j]), 0) << i << j;
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_LT(string_util::compare_signed(ascending[j], ascending[i]), 0) << i << j;
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
