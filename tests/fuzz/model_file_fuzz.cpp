// A model file: whatever is accepted can classify, is shown in every form, and is saved again to
// the same bytes. The first byte of the input chooses whether the rest is a file or its payload.
#include <zlib.h>

#include <fstream>
#include <iterator>

#include "arbor/csv/table_error.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/text_classifier.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using namespace arbor::tree;

static std::string in_envelope(const std::string& payload) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << 1U << static_cast<unsigned long long>(payload.size());
  out << static_cast<unsigned int>(
      crc32_z(0, reinterpret_cast<const Bytef*>(payload.data()), payload.size()));
  return "ArborDT\n" + std::string(device.bytes().begin(), device.bytes().end()) + payload;
}

// Classifies a case with the value `code` of every attribute; code 0 is the unknown value.
static void classify(const decision_tree& tree, unsigned int code) {
  std::vector<std::string> texts;
  for (const auto& attribute : tree.attributes) texts.push_back(value_text(*attribute, code));
  std::vector<const char*> values;
  values.reserve(texts.size());
  for (const std::string& text : texts) values.push_back(code == 0 ? nullptr : text.c_str());
  const std::vector<double> distribution = text_classifier{tree}(values);
  check(distribution.size() + 1 == tree.class_column->get_distinct(),
        "every class has a probability");
  for (const double share : distribution)
    check(share >= 0 && share <= 1.001, "a probability is one");
}

// Uses the model and saves it.
static std::string used(const std::string& bytes) {
  const decision_tree tree = load_model(memory_file(bytes).path());
  for (unsigned int code = 0; code < 4; ++code) refusal<unfit_text>([&] { classify(tree, code); });
  first_lines(tree_as_text(tree, depth_of_lines(tree, 5)), 5);
  check(tree_as_dot(tree, whole_depth) + tree_as_json(tree) != "", "a tree is shown");
  static const std::string path = "/dev/shm/arbor_fuzz_" + std::to_string(getpid());
  save_model(path, tree);
  std::ifstream file(path, std::ios::binary);
  std::remove(path.c_str());
  thaw(tree.class_column->get_o_set());
  for (const auto& attribute : tree.attributes) thaw(attribute->get_o_set());
  return {std::istreambuf_iterator<char>(file), {}};
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in{data, size};
  const bool is_file = in.below(2) == 1;
  const std::string refused = refusal<table_error>([&] {
    const std::string saved = used(is_file ? in.rest() : in_envelope(in.rest()));
    check(used(saved) == saved, "a model is read back to the same bytes");
  });
  check(refused.find('\n') == std::string::npos, "a message is one line");
  return 0;
}
