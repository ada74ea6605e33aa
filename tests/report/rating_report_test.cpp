#include "arbor/report/rating_report.h"

#include <gtest/gtest.h>

#include "arbor/report/json_writer.h"
#include "arbor/table/value_text.h"
#include "arbor/table/table_loader.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

// An attribute of each sort, with names and values that need care in every format.
tree::table loaded() {
  const temporary_file csv(
      "\"size, \"\"big\"\"\",farbe,one,none,c\n"
      "0.1,gr\xC3\xBCn,5,?,x\n0.1,gr\xC3\xBCn,5,?,x\n0.1,rot,?,?,x\n0.1,rot,5,?,x\n"
      "0.3,rot,5,?,y\n0.3,rot,5,?,y\n0.3,rot,5,?,y\n0.3,rot,?,?,y\n");
  tree::table table = tree::load_table(csv.path(), {});
  table.name = "t.csv";
  return table;
}

TEST(RatingReport, TextAlignsTheColumnsAndSaysWhatCannotBeSplit) {
  const tree::table table = loaded();
  std::vector<tree::attribute_rating> ratings = tree::rate_attributes(table, table.cases, 2);
  tree::sort_ratings(ratings, tree::rating_order::gain);
  EXPECT_EQ(tree::table_line(table, table.cases),
            "t.csv: 8 rows, 4 attributes, 10 unknown cells; class \"c\": x 4, y 4");
  EXPECT_EQ(
      tree::ratings_as_text(table.cases, ratings),
      "attribute    kind        type     values  unknown      gain  split info  gain ratio  split\n"
      "size, \"big\"  continuous  float         2     0.0%  1.000000    1.000000    1.000000  <= "
      "0.1\n"
      "farbe        discrete    string        2     0.0%  0.311278    0.811278    0.383688  2 "
      "branches\n"
      "one          continuous  integer       1    25.0%         -           -           -  no "
      "split: a single value\n"
      "none         ignore      null          0   100.0%         -           -           -  no "
      "split: ignored\n");
}

TEST(RatingReport, CsvQuotesWhereItMustAndLeavesOutWhatDoesNotApply) {
  const tree::table table = loaded();
  std::vector<tree::attribute_rating> ratings = tree::rate_attributes(table, table.cases, 2);
  tree::sort_ratings(ratings, tree::rating_order::name);
  EXPECT_EQ(
      tree::ratings_as_csv(table.cases, ratings),
      "attribute,kind,type,values,unknown,gain,split_info,gain_ratio,branches,threshold,no_split\n"
      "farbe,discrete,string,2,0,0.31127805,0.8112781,0.38368845,2,,\n"
      "none,ignore,null,0,1,,,,,,ignored\n"
      "one,continuous,integer,1,0.25,,,,,,a single value\n"
      "\"size, \"\"big\"\"\",continuous,float,2,0,1,1,1,2,0.1,\n");
}

TEST(ShortestText, GivesTheCodeAgainWherePrintingDoesNot) {
  const auto numbers = make_column(
      "continuous", "float", listed("-inf,-1e-33,1e-45,1e-33,1.00001e-28,0.1,3.4028235e38,inf"));
  for (unsigned int code = 1; code <= 8; ++code) {
    EXPECT_EQ(numbers->get_index(tree::shortest_value(*numbers, code).c_str()), code);
  }
  EXPECT_EQ(tree::shortest_value(*numbers, 6) + tree::shortest_value(*numbers, 0), "0.1?");
  for (const auto& [low, high] : {std::pair{1U, 2U}, {2U, 3U}, {4U, 5U}, {7U, 8U}}) {
    column::splitting_desc split;
    split.low_code = low;
    split.high_code = high;
    EXPECT_EQ(numbers->get_index(tree::cut_threshold(*numbers, split).c_str()), low);
  }
}

TEST(JsonWriter, SeparatesIndentsAndQuotesWhatIsNested) {
  tree::json_writer json;
  json.open('{')
      .member("a", 0.1F)
      .key("b")
      .open('[')
      .value("\"\n\xFF")
      .value(nullptr)
      .open('{')
      .close()
      .close();
  json.key("c").open('[').close().close();
  EXPECT_EQ(json.text(),
            "{\n  \"a\": 0.1,\n  \"b\": [\n    \"\\\"\\n\xEF\xBF\xBD\",\n    null,\n    {}\n  ],\n "
            " \"c\": []\n}\n");
}

}  // namespace
}  // namespace arbor::tests
