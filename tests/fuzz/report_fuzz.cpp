// Whatever table or model is accepted is printed in every form, in proportion to its bytes.
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/report/page/page.h"
#include "arbor/store/model_record.h"
#include "arbor/tree/classification.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/reports.h"
#include "tests/support/tables.h"

using namespace arbor::fuzz;
using namespace arbor::tree;
using arbor::tests::reports_of;
using arbor::tests::write_exports;
using arbor::tests::written;

// A node of 45 bytes may have a line of each report with three names of up to 200 bytes, the
// weights of a thousand classes on it, and forty bars in front of it.
static void check_size(const std::string& reports, std::size_t input) {
  check(reports.size() < 20000 + 400 * input, "a report is in proportion to its input");
}

// Not of comma-separated values, which a program reads as they are.
static void check_shown(const std::string& reports, std::size_t input) {
  check_size(reports, input);
  std::string lines;
  for (const char c : reports) lines += c == '\n' ? ' ' : c;
  check(printable(lines) == lines, "a report has nothing that a terminal obeys");
}

// The style, the script and the licences of a page take 80,000 bytes.
static void check_page(const decision_tree& tree, std::size_t input) {
  const std::string page =
      arbor::tests::written([&](std::ostream& out) { write_page(out, tree, nullptr); });
  check(page.size() < 120000 + 400 * input, "a page is in proportion to its input");
  const std::size_t data = page.find("id=\"data\">");
  check(page.find('<', data) == page.find("</script>", data), "no text is markup");
}

static void print_model(const std::vector<unsigned char>& record) {
  const decision_tree tree = read_model_record(record, record_version);
  check_shown(reports_of(tree), record.size());
  message_of([&] {  // that a text is too long to be repeated
    check_size(written([&](std::ostream& out) { write_exports(out, tree); }), record.size());
  });
  check_page(tree, record.size());
  thaw(tree.class_column->get_o_set());
  thaw_all(tree.attributes);
}

static void print_table(const std::string& contents) {
  const memory_file file(contents);
  const table rows = load_table(file.path(), {});
  check_size(reports_of(rows, rate_attributes(rows, rows.cases, 1)), contents.size());
  validation_options options;
  options.folds = 2;
  options.importance = true;
  options.grow.threads = 1;
  options.grow.prune = false;
  options.grow.min_weight = 1;
  if (rows.cases.size() >= options.folds)
    check_shown(reports_of(rows, options, cross_validate(rows, options)), contents.size());
  const decision_tree tree = grow_tree(rows, rows.cases, options.grow);
  check_shown(reports_of(tree) + evaluation_as_text("training", *tree.class_column,
                                                    classify_cases(tree, rows, rows.cases)),
              contents.size());
  thaw_all(tree.attributes);
  thaw(tree.class_column->get_o_set());
  thaw_all(rows.columns);
}

// The input is the record of a model, or a table.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  message_of([&] { print_model({data, data + size}); });
  message_of<table_error>([&] { print_table({data, data + size}); });
  return 0;
}
