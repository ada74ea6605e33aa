// A model file: whatever is accepted says something of every case, can be shown in every form, and is saved again to the
// same bytes. The first byte of the input tells whether the rest is a file or what a sound envelope holds.
#include <sys/stat.h>
#include <zlib.h>

#include <fstream>
#include <iterator>

#include "arbor/tree/classification.h"
#include "arbor/tree/model_store.h"
#include "arbor/tree/table_error.h"
#include "arbor/tree/tree_report.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using namespace arbor::tree;

namespace {

// A path to save a model at: in memory, and with a folder around it in which it can be replaced.
const std::string& saved_path() {
  static const std::string path = [] {
    std::string folder = "/dev/shm/arbor_fuzz_XXXXXX";
    check(mkdtemp(folder.data()) != nullptr, "a folder can be made");
    static const std::string made = folder;
    std::atexit([] { rmdir(made.c_str()); });
    return made + "/model";
  }();
  return path;
}

std::string in_envelope(const std::string& payload) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << 1U << static_cast<unsigned long long>(payload.size());
  out << static_cast<unsigned int>(crc32_z(0, reinterpret_cast<const Bytef*>(payload.data()), payload.size()));
  return "ArborDT\n" + std::string(device.bytes().begin(), device.bytes().end()) + payload;
}

// Of a case with the value `code` of every attribute; of none with code 0.
void classify(const decision_tree& tree, text_classifier& say, unsigned int code) {
  std::vector<std::string> texts;
  for (const auto& attribute : tree.attributes) texts.push_back(value_text(*attribute, code));
  std::vector<const char*> values;
  for (const std::string& text : texts) values.push_back(code == 0 ? nullptr : text.c_str());
  const std::vector<double> distribution = say(values);
  check(distribution.size() == tree.class_column->get_range().second - 1, "every class has a probability");
  for (const double probability : distribution) check(probability >= 0 && probability <= 1.001, "probabilities are some");
}

void use(const decision_tree& tree) {
  text_classifier say(tree);
  for (unsigned int code = 0; code < 4; ++code) refusal<unfit_text>([&] { classify(tree, say, code); });
  check(!tree_as_text(tree, whole_depth).empty() && !tree_as_dot(tree, whole_depth).empty(), "a tree can be shown");
  tree_as_json(tree);
  first_lines(tree_as_text(tree, depth_of_lines(tree, 5)), 5);
}

std::string saved(const decision_tree& tree) {
  save_model(saved_path(), tree);
  std::ifstream file(saved_path(), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  unlink(saved_path().c_str());
  return bytes;
}

// Its columns' domains let go of their values.
struct loaded_tree {
  explicit loaded_tree(const std::string& bytes) : tree(load_model(memory_file(bytes).path())) {}
  ~loaded_tree() {
    thaw(tree.class_column->get_o_set());
    for (const auto& attribute : tree.attributes) thaw(attribute->get_o_set());
  }

  decision_tree tree;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in(data, size);
  const bool is_file = in.below(2) == 1;
  const std::string bytes = is_file ? in.rest() : in_envelope(in.rest());
  const std::string refused = refusal<table_error>([&] {
    const loaded_tree first(bytes);
    use(first.tree);
    const std::string once = saved(first.tree);
    check(saved(loaded_tree(once).tree) == once, "a model is read back to the same bytes");
  });
  check(refused.find('\n') == std::string::npos, "a message is one line");
  return 0;
}
