// The record in a model file: whatever is accepted can classify, and is saved again to the same
// bytes.
#include "arbor/store/model_record.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/text_classifier.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/cells.h"

using namespace arbor::fuzz;
using arbor::tests::as_cell;
using namespace arbor::tree;

// Classifies a case with the value `code` of every attribute; code 0 is the unknown value.
static void classify(const decision_tree& tree, unsigned int code) {
  std::vector<std::string> texts;
  for (const auto& attribute : tree.attributes) texts.push_back(value_text(*attribute, code));
  std::vector<cell_text> values;
  for (std::string& text : texts) values.push_back(code == 0 ? unknown_cell : as_cell(text));
  const std::vector<double> distribution = text_classifier{tree}(values).distribution;
  bool sound = distribution.size() + 1 == tree.class_column->get_distinct();
  for (const double share : distribution) sound &= share >= 0 && share <= 1.001;
  check(sound, "every class has a probability");
}

// Uses the tree and gives its record.
static std::vector<unsigned char> used(const std::vector<unsigned char>& record,
                                       unsigned int version = record_version) {
  const decision_tree tree = read_model_record(record, version);
  for (unsigned int code = 0; code < 4; ++code) classify(tree, code);
  const std::vector<unsigned char> again = model_record(tree);
  thaw(tree.class_column->get_o_set());
  thaw_all(tree.attributes);
  return again;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  for (unsigned int version = 1; version <= record_version; ++version) {
    message_of([&] {  // load_model escapes what the message quotes
      const std::vector<unsigned char> saved = used({data, data + size}, version);
      check(used(saved) == saved, "a model is read back to the same bytes");
    });
  }
  return 0;
}
