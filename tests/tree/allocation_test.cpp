// The same for the callers of the module: tables, growing trees, models and reports.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "arbor/report/evaluation_report.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/rating.h"
#include "arbor/tree/table_classification.h"
#include "tests/support/allocations.h"
#include "tests/support/oracle.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::table;

// Columns of integers, of sparse ones, of floats of which two are the same, of texts, of numbers
// among texts, of quoted cells, of bits, and of nothing; and weights.
const char* const small_table =
    "number,sparse,float,text,mixed,\"quoted, cell\",nothing,bit,weight,class\n"
    "1,1000000007,0.5,a text of more than a few letters,1,\"a, \"\"quoted\"\"\nline of many "
    "letters\",,yes,1,yes\n"
    "2,?,1.25,another text of more than a few letters,1.5,plain,,no,2,no\n"
    "3,-5,16777217,a text of more than a few letters,?,plain,?,yes,1,yes\n"
    "?,77,16777216,another text of more than a few letters,few,\"\",,no,0.5,no\n"
    "4,12,2e3,a text of more than a few letters,7,plain,,yes,1,yes\n"
    "5,13,?,another text of more than a few letters,8,plain,,no,1,no\n"
    "6,14,3.5,?,8,plain,,no,3,no\n";

table loaded(const temporary_file& file) {
  tree::load_options options;
  options.weights_name = "weight";
  return tree::load_table(file.path(), options);
}

table of_rows(std::size_t rows) {
  dice roll{rows};
  std::string csv = "number,gaps,text,few,weight,class\n";
  for (std::size_t row = 0; row < rows; ++row) {
    const unsigned int number = roll(100), text = roll(12);
    csv += std::to_string(number) + "," +
           (roll(30) == 0 ? "?" : std::to_string(roll(3000) + number)) +
           ",what is rather a long text " + std::to_string(text) + "," +
           (roll(40) == 0 ? "?"
            : text > 6    ? "y"
                          : "n") +
           ",1," + ((number > 40) == (text < 8) || roll(9) == 0 ? "a\n" : "b\n");
  }
  const temporary_file file(csv);
  return loaded(file);
}

std::string told(const table& rows) {
  std::string text = rows.name + std::to_string(rows.total_weight);
  for (const auto& x : rows.columns) {
    text += '\n' + x->get_name() + ' ' + x->get_type() + ' ' + x->get_o_set()->get_datatype();
    for (const auto& weighted : rows.cases)
      text += x->size() == 0 ? "" : "," + x->get_row_value(weighted.first);
  }
  for (const tree::table_remark& remark : rows.remarks) text += '\n' + remark.text;
  return text;
}

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

decision_tree grown(const table& rows, unsigned int threads) {
  tree::grow_options options;
  options.threads = threads;
  options.min_weight = 1;
  options.confidence = 0.5F;
  return tree::grow_tree(rows, rows.cases, options);
}

std::string told(const decision_tree& t) {
  return tree::tree_as_text(t, tree::whole_depth);
}

// What a loader answers, which must tell of a lack of storage by std::bad_alloc alone.
template <class Load>
std::string answer_of(Load load) {
  try {
    return told(load());
  } catch (const strata::util::no_storage& lack) {
    ADD_FAILURE() << lack.what();
    throw;
  }
}

TEST(AllocationFailure, GivesNoPartOfATable) {
  const temporary_file file(small_table);
  fail_each("load", [&] { return answer_of([&] { return loaded(file); }); });
}

TEST(AllocationFailure, LeavesATableToGrowTreesOn) {
  const table small = of_rows(60), large = of_rows(1500);
  fail_each("rate", [&] {
    return std::to_string(tree::rate_attributes(small, small.cases, 1).front().split->gain);
  });
  fail_each("small", [&] { return told(grown(small, 1)); });
  fail_each(
      "large", [&] { return told(grown(large, 1)); }, 97);
}

TEST(AllocationFailure, InAThreadComesOutOfTheGrower) {
  const table large = of_rows(1500);
  fail_each(
      "threads", [&] { return told(grown(large, 3)); }, 61);
}

TEST(AllocationFailure, LeavesAModelToClassifyWithAndToPrint) {
  const table rows = of_rows(60);
  const decision_tree t = grown(rows, 1);
  const std::string csv =
      "gaps,few,text,number,class\n50,?,what is rather a long text 9,\"7\",a\n?,y,?,55,\n";
  const temporary_file cases(csv);
  fail_each("rows",
            [&] { return tree::matrix_as_text(t, tree::classify_cases(t, rows, rows.cases)); });
  fail_each("text", [&] {
    return tree::tree_as_text(t, 2) + tree::first_lines(told(t), 3) + tree::size_line(t);
  });
  fail_each("dot", [&] { return tree::tree_as_dot(t, 3); });
  fail_each("tree as JSON", [&] { return tree::tree_as_json(t); });
  const auto ratings = tree::rate_attributes(rows, rows.cases, 1);
  fail_each("ratings as JSON", [&] { return tree::ratings_as_json(rows, rows.cases, ratings); });
  fail_each("file", [&] {
    std::ofstream out("/dev/null");
    const auto result = tree::classify_table(cases.path(), t, {}, out);
    return tree::error_line("new", *result.matrix);
  });
}

// In a folder of a long name, so that its name is kept by an allocation too.
TEST(AllocationFailure, LeavesAModelFileWhole) {
  namespace fs = std::filesystem;
  const temporary_file place("");
  const fs::path folder = place.path() + "_a_folder_of_a_long_name",
                 model = folder / "a model of a long name.model";
  const decision_tree t = grown(of_rows(60), 1), other = grown(of_rows(20), 1);
  fs::create_directory(folder);
  fail_each(
      "save", [&] { return tree::save_model(model, other), 0; },
      [&](int) { return tree::save_model(model, t), ""; },
      [&](int) {
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
        return bytes_of(model);
      });
  fail_each("load", [&] { return answer_of([&] { return tree::load_model(model); }); });
  fs::remove_all(folder);
}

}  // namespace
}  // namespace arbor::tests
