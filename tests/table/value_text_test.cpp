#include "arbor/table/value_text.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

TEST(ValueText, KeepsTextsThatNoEscapingMade) {
  for (const std::string text : {"\x7F",
                                 "a\x7F"
                                 "4",
                                 "\x7FG1",
                                 "\x7F"
                                 "1G",
                                 "plain"})
    EXPECT_EQ(tree::to_cell_text(text), text);
  EXPECT_EQ(tree::to_domain_text("Z\xC3\xBC~\x7F"),
            "Z\x7F"
            "C3\x7F"
            "BC~\x7F"
            "7F");
  EXPECT_EQ(tree::to_cell_text("\x7F"
                               "C3\x7F"
                               "BC"),
            "\xC3\xBC");
}

TEST(ValueText, ReadsANumberAsTheDomainHoldsIt) {
  const struct {
    const char* type;
    const char* text;
    double number;  // -1: none
  } cases[] = {{"integer", " +7", 7},  {"integer", "7.0", -1},
               {"integer", "4e9", -1}, {"uinteger", "4294967295", 4294967295},
               {"uinteger", "-0", -1}, {"float", "0.1", 0.1F},
               {"float", "x", -1},     {"float", "nan", -1},
               {"float", "", -1},      {"double", "0.1", 0.1}};
  for (const auto& c : cases) {
    const auto column = make_column("discrete", c.type, {"1"});
    double number = -1;
    EXPECT_EQ(tree::number_of_text(*column, c.text, number), c.number != -1) << c.text;
    EXPECT_EQ(number, c.number) << c.text;
  }
}

}  // namespace
}  // namespace arbor::tests
