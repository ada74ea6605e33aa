#include "arbor/csv/message_text.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

TEST(MessageText, ShowsAnyTextOnOneLine) {
  const std::string x(59, 'x');
  const std::vector<std::pair<std::string, std::string>> quoted{
      {"a\"\n\r\t\x1F\x7F\xC3\xBC", "\"a\\\"\\n\\r\\t\\x1F\\x7F\xC3\xBC\""},
      {x + "y", "\"" + x + "y\""},
      {x + "yz", "\"" + x + "y...\""},
      {x + "\xC3\xBC", "\"" + x + "...\""},
  };
  for (const auto& [text, shown] : quoted) EXPECT_EQ(tree::in_quotes(text), shown);
  EXPECT_EQ(tree::counted(1, "leaf", "leaves") + tree::counted(0, "leaf", "leaves"),
            "1 leaf0 leaves");
  EXPECT_EQ(tree::counted(1, "row") + tree::counted(2, "row"), "1 row2 rows");
  EXPECT_EQ(tree::shell_word("it's"), "'it'\\''s'");
}

TEST(MessageText, ProposesTheNearestName) {
  const std::vector<std::pair<std::string, std::string>> nearest{
      {"Siez", "size"},      {"sz", ""},          {"szi", ""},
      {"classes", "class"},  {"klasse", "class"}, {"abcclass", ""},
      {"lcasss", "class"},   {"sizes", "size"},   {"wieght", "weight"},
      {"weihgth", "weight"}, {"xeight", "weight"}};
  for (const auto& [mistyped, name] : nearest) {
    EXPECT_EQ(tree::did_you_mean(mistyped, {"class", "weight", "size", "sizs"}),
              name.empty() ? "" : "; did you mean \"" + name + "\"?")
        << mistyped;
  }
  tree::check_choice("", "a", {"b", "a"});
  EXPECT_EQ(message_of([] {
              tree::check_choice("sort: ", "nmae", {"gain", "name"});
            }),
            "sort: \"nmae\" is none of gain, name; did you mean \"name\"?");
}

}  // namespace
}  // namespace arbor::tests
