// The same for the callers of the module: tables, growing trees, models and reports.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "arbor/formats/arff_source.h"
#include "arbor/formats/names_file.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/report/page/page.h"
#include "arbor/store/model_store.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/rating.h"
#include "arbor/tree/table_classification.h"
#include "tests/support/allocations.h"
#include "tests/support/byte_sources.h"
#include "tests/support/reports.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::table;

// Integers, sparse ones, floats of which two are the same, texts, numbers among texts, quoted
// cells, bits, and nothing; and weights.
const char* const small_table =
    "number,sparse,float,text,mixed,\"quoted, cell\",nothing,bit,weight,class\n"
    "1,1000000007,0.5,a text of more than a few letters,1,\"a, \"\"quoted\"\"\nline of many "
    "letters\",,yes,1,yes\n"
    "2,?,1.25,another text of more than a few letters,1.5,plain,,no,2,no\n"
    "3,-5,16777217,a text of more than a few letters,?,plain,?,yes,1,yes\n"
    "?,77,16777216,?,few,\"\",,no,0.5,no\n";

table loaded(const std::string& path, const tree::load_options& options = {}) {
  try {
    return tree::load_table(path, options);
  } catch (const strata::util::no_storage& lack) {
    ADD_FAILURE() << lack.what();  // here, only std::bad_alloc reports it
    throw;
  }
}

decision_tree grown(const table& rows, unsigned int threads = 1) {
  tree::grow_options options;
  options.threads = threads;
  options.min_weight = 1;
  options.confidence = 0.5F;
  return tree::grow_tree(rows, rows.cases, options);
}

TEST(AllocationFailure, GivesNoPartOfATable) {
  const temporary_file file(small_table);
  fail_each("load", [&] {
    const table rows = loaded(file.path(), options_of("weights weight"));
    std::string text = rows.name + std::to_string(rows.total_weight);
    for (const auto& x : rows.columns) text += x->get_name() + record_of(x.get());
    for (const tree::table_remark& remark : rows.remarks) text += remark.text;
    return text;
  });
}

TEST(AllocationFailure, GivesNoPartOfAnotherFormat) {
  fail_each("arff", [] {
    tree::arff_source rows(
        source_of("@attribute 'a long name of an attribute' {x, 'a long value of this attribute'}\n"
                  "@attribute n real\n@data\n'a long value of this attribute',1\n{1 2}\n"),
        {});
    return rows.declared().columns.front().values->back() + all_of(rows);
  });
  fail_each("names", [] {
    return tree::read_names_file(*source_of("a long name of a class, x.\na long name: x, y."))
        .columns.back()
        .values->front();
  });
}

TEST(AllocationFailure, LeavesATableToGrowTreesOn) {
  const table small = loaded(ARBOR_DATA "/golf.csv"), large = loaded(ARBOR_DATA "/pima2.csv");
  fail_each("small", [&] { return text_of(grown(small)); });
  for (const unsigned int threads : {1U, 3U}) {
    const auto grow = [&] { return text_of(grown(large, threads)); };
    fail_each("large", grow, 197);
  }
}

TEST(AllocationFailure, EndsAValidation) {
  const table rows = loaded(ARBOR_DATA "/golf.csv");
  tree::validation_options options;
  options.folds = 2;
  options.tune = options.importance = true;
  options.grow.threads = 2;
  const auto validate = [&] {
    const tree::validation result = tree::cross_validate(rows, options);
    return reports_of(rows, options, result);
  };
  fail_each("validate", validate, 797);
}

TEST(AllocationFailure, LeavesAModelToClassifyWithAndToPrint) {
  const table rows = loaded(ARBOR_DATA "/golf.csv");
  const decision_tree t = grown(rows);
  const temporary_file csv("humidity,windy,outlook,play\n50,?,sunny,yes\n\"?\",no,,\n");
  const auto print = [&] {
    return reports_of(t) + reports_of(rows, tree::rate_attributes(rows, rows.cases, 1)) +
           tree::evaluation_as_text("golf", *t.class_column,
                                    tree::classify_cases(t, rows, rows.cases));
  };
  fail_each("text", print, 5);
  const tree::case_summary cases = tree::summary_of(rows, rows.cases);
  const tree::evaluation quality = tree::classify_rows(t, rows);
  const tree::table_rating ratings = tree::rate_attributes(rows, rows.cases, 1);
  const tree::page_table of_table{rows.name, cases, quality, ratings};
  const auto write = [&](std::ostream& out) { tree::write_page(out, t, &of_table); };
  fail_each(
      "page", [&] { return arbor::tests::written(write); }, 5);
  fail_each("file", [&] {
    std::ofstream out("/dev/null");
    const auto result = tree::classify_table(csv.path(), t, {}, &out);
    return tree::error_line("new", result.quality->matrix());
  });
}

// In a folder of a long name, so that the name takes an allocation too.
TEST(AllocationFailure, LeavesAModelFileWhole) {
  namespace fs = std::filesystem;
  const fs::path folder = temporary_file("").path() + "_a_folder_of_a_long_name",
                 model = folder / "a model of a long name.model";
  const decision_tree older = grown(loaded(ARBOR_DATA "/golf.csv")),
                      newer = grown(loaded(ARBOR_DATA "/iris.csv"));
  fs::create_directory(folder);
  const auto make = [&] { return tree::save_model(model, older), 0; };
  const auto act = [&](int) { return tree::save_model(model, newer), ""; };
  const auto show = [&](int) {
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    std::ifstream in(model, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  fail_each("save", make, act, show);
  fail_each("load", [&] { return text_of(tree::load_model(model)); });
  fs::remove_all(folder);
}

}  // namespace
}  // namespace arbor::tests
