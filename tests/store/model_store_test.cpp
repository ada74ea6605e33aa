#include "arbor/store/model_store.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <map>

#include "arbor/tree/text_classifier.h"
#include "tests/support/cells.h"
#include "tests/support/reports.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::tree_node;

constexpr std::size_t head = 8 + 4 + 8 + 4;  // magic, version, length, checksum

// Node 0 tests a discrete attribute, its children 1 and 2 a float and an integer; the nodes 3 to 6
// are leaves.
tree::decision_tree sample_tree() {
  return grown(
      load_csv("d,f,i,c\np,0.5,?,x\np,0.5,1,x\np,1.5,1,y\np,1.5,9,y\np,1.5,9,y\n"
               "q,0.5,1,z\nq,1.5,1,z\nq,1.5,1,z\nq,?,9,w\nq,0.5,9,w\n"));
}

std::string saved(const tree::decision_tree& t) {
  const temporary_file model("an older model");
  tree::save_model(model.path(), t);
  std::ifstream in(model.path(), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Loads a model of these bytes, classifies with it and shows it in every form; the message without
// the path if it is refused.
std::string used(const std::string& bytes) {
  const std::string message = refusal(bytes, [&](const std::string& path) {
    const tree::decision_tree t = tree::load_model(path);
    const std::vector<tree::cell_text> unknown(t.attributes.size(), tree::unknown_cell);
    EXPECT_EQ(tree::text_classifier(t)(unknown).distribution.size(), t.class_count());
    EXPECT_NE(reports_of(t), "");
  });
  EXPECT_EQ(message.find('\n'), std::string::npos);
  return message;
}

void correct_checksum(std::string& bytes) {
  const std::uint64_t length = bytes.size() - head;
  const auto sum = static_cast<std::uint32_t>(
      crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()) + head, bytes.size() - head));
  std::memcpy(&bytes[12], &length, sizeof length);
  std::memcpy(&bytes[20], &sum, sizeof sum);
}

// Saves the sample tree with a fault in it, and expects that loading it is refused.
template <class MakeFault>
void refuses(const std::string& message, MakeFault make_fault) {
  tree::decision_tree t = sample_tree();
  make_fault(t);
  EXPECT_EQ(used(saved(t)), ": damaged: " + message);
}

// The same for each of these nodes, whose field gets the value beside it.
template <class Field>
void refuses(const std::string& message, Field tree_node::*field,
             const std::vector<std::pair<std::size_t, Field>>& faults) {
  for (const auto& fault : faults)
    refuses(message, [&](auto& t) { t.nodes[fault.first].*field = fault.second; });
}

// A column without rows whose domain has this record.
std::unique_ptr<column> column_of(const std::string& domain_record) {
  std::string error;
  return std::unique_ptr<column>(
      column::NEW_COLUMN(read_record<o_set>(domain_record).release(), "new", "discrete", error));
}

TEST(ModelStore, RefusesEachFaultOfATreeBehindACorrectChecksum) {
  refuses("a class has no proper weight", &tree_node::class_weights,
          {{3, {{0, 1}, {1, -1}}}, {3, {{0, 1}, {1, INFINITY}}}, {3, {{0, 0}}}});
  refuses("a node has no weight", &tree_node::class_weights, {{6, {}}});
  refuses("the classes of a node are out of order", &tree_node::class_weights,
          {{3, {{1, 1}, {1, 1}}}, {3, {{1, 1}, {0, 1}}}, {3, {{4, 1}}}});
  refuses("a branch has no proper share", &tree_node::share, {{6, -0.5F}, {6, 2.5F}});
  refuses("a leaf has branches", &tree_node::child_count, {{6, 1}});
  refuses("a node tests no attribute", &tree_node::attribute, {{0, 3}});
  refuses("a threshold is no value", &tree_node::split, {{1, {"0.75", 2}}});
  refuses("a test has no branches", &tree_node::child_count, {{0, 0}, {1, 1}, {1, 3}});
  refuses("a branch is missing", &tree_node::first_child, {{0, 0}, {1, 6}, {1, ~0U}});
  refuses("a branch is out of order", &tree_node::branch, {{1, 0}, {2, 1}, {2, 3}, {4, 3}});
  refuses("a branch has two parents", &tree_node::first_child, {{2, 4}});
  refuses("the branches of a test have no share",
          [](auto& t) { t.nodes[1].share = t.nodes[2].share = 0; });
  refuses("a node has no parent", [](auto& t) { t.nodes.push_back(tree_node(t.nodes[6])); });
  refuses("its origin is no growing of a tree", [](auto& t) { t.origin->min_weight = NAN; });
  refuses("it has no nodes", [](auto& t) { t.nodes.clear(); });
  refuses("it has no class", [](auto& t) { std::swap(t.class_column, t.attributes[0]); });
  refuses("an attribute is neither discrete nor continuous",
          [](auto& t) { t.attributes[1].reset(t.class_column->clone(true)); });
  refuses("two columns have the name \"d\"",
          [](auto& t) { t.attributes.emplace_back(t.attributes[0]->clone(true)); });
  for (const auto& [type, bytes] : std::map<std::string, int>{
           {"integer", 4}, {"uinteger", 4}, {"float", 4}, {"double", 8}, {"string", 6}}) {
    std::string record = record_of(make_domain(type, {"1", "2"}).get());
    std::rotate(record.end() - 2 * bytes, record.end() - bytes, record.end());
    refuses("the values of a column are out of order",
            [&](auto& t) { t.attributes.push_back(column_of(record)); });
  }
  for (const char* type : {"float", "double"}) {
    const std::string record = record_of(make_domain(type, {"1", "nan"}).get());
    refuses("a value of a column is not a number",
            [&](auto& t) { t.attributes.push_back(column_of(record)); });
  }
  refuses("a column has rows", [](auto& t) { t.attributes[1]->push_back("0.5"); });
}

// Replaces bytes this far from the end of the saved sample tree, whose last ones are its scale.
std::string with_scale_bytes(std::size_t from_end, const std::string& changed) {
  std::string bytes = saved(sample_tree());
  bytes.replace(bytes.size() - from_end, changed.size(), changed);
  correct_checksum(bytes);
  return used(bytes);
}

TEST(ModelStore, SavesTheScalesOfDecimalsBehindTheNodesAndRefusesEachFaultOfThem) {
  const std::string bytes = saved(sample_tree());
  std::string tail(44, '\0');  // one scale, of attribute 2: 0.5 and 1.5 are 5 and 15 tenths
  for (const auto& [place, byte] : {std::pair{0, 1}, {4, 2}, {8, 1}, {12, 5}, {28, 10}})
    tail[static_cast<std::size_t>(place)] = static_cast<char>(byte);
  EXPECT_EQ(bytes.substr(bytes.size() - tail.size()), tail);
  const std::string zero(1, '\0'), ones(16, '\xFF'), half = std::string(15, '\0') + '\x40';
  EXPECT_EQ(with_scale_bytes(44, zero), ": damaged: something follows the last node");
  EXPECT_EQ(with_scale_bytes(40, zero), ": damaged: a scale is of no column of steps");
  EXPECT_EQ(with_scale_bytes(40, "\3"), ": damaged: a scale is of no column of steps");
  EXPECT_EQ(with_scale_bytes(40, "\4"), ": damaged: the scales of columns are out of order");
  EXPECT_EQ(with_scale_bytes(36, "\x26"), ": damaged: a column has no proper scale");
  for (const std::string& number : {zero, ones, half})
    EXPECT_EQ(with_scale_bytes(16, number), ": damaged: a column has no proper scale");
  EXPECT_EQ(with_scale_bytes(32, half), ": damaged: a column has no proper scale");
  EXPECT_EQ(with_scale_bytes(32, ones), ": damaged: a threshold is no value");
  refuses("a column has no proper scale", [](auto& t) {
    const auto end = tree::wide_powers_of_ten[tree::most_scale_digits];
    std::string error;
    auto domain = std::make_unique<tree::decimal_domain>(tree::decimal_scale{end - 1, 1, 0},
                                                         *make_domain("uinteger", {"0", "1"}));
    t.attributes.emplace_back(column::NEW_COLUMN(domain.release(), "new", "discrete", error));
  });
}

TEST(ModelStore, RefusesEveryTruncationAndChangedByteAndIsNotHarmedByThoseItCannotTell) {
  const std::string bytes = saved(sample_tree());
  const temporary_file whole(bytes);
  EXPECT_EQ(saved(tree::load_model(whole.path())), bytes);
  std::size_t refused = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string shorter = bytes.substr(0, i);
    EXPECT_THAT(used(shorter), testing::StartsWith(i < 8 ? ": not a" : ": damaged")) << i;
    if (i >= head) correct_checksum(shorter);
    EXPECT_THAT(used(shorter), testing::StartsWith(": ")) << i;
    for (const int flip : {0x01, 0x80}) {
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ flip);
      EXPECT_THAT(used(changed), testing::StartsWith(": ")) << i;
      correct_checksum(changed);
      refused += i >= head && !used(changed).empty() ? 1 : 0;
    }
  }
  EXPECT_GT(refused, bytes.size() / 2);
  EXPECT_THAT(used(bytes + "x"), testing::HasSubstr(" bytes of a tree of "));
}

TEST(ModelStore, ReadsTheFirstFormatAndRefusesLaterOnes) {
  std::ifstream in(ARBOR_DATA "/../tests/fuzz/corpus/model_file_fuzz/golf_payload");
  std::string bytes = saved(sample_tree()).substr(0, head);
  bytes.append(std::istreambuf_iterator<char>(in), {});
  correct_checksum(bytes);
  for (const auto& [version, message] :
       {std::pair{'\1', ""}, {'\3', ": a model of format 3; this program reads formats 1 to 2"}}) {
    bytes[8] = version;
    EXPECT_EQ(used(bytes), message);
  }
  bytes[8] = '\1';
  const decision_tree golf = tree::load_model(temporary_file(bytes).path());
  EXPECT_EQ(tree::description(golf, 60), "class \"play\": 8 nodes, 5 leaves, depth 2\n");
  EXPECT_EQ(text_of(golf, {1}),
            "outlook = overcast: yes (4)\noutlook = rainy: ... 2 leaves below [2]\n"
            "outlook = sunny: ... 2 leaves below [3]\n");
}

// An unknown value comes to each leaf with all its weight, and no node weighs enough to be the last
// that its leaf has to look at. A program that walked to the root from each would not end.
TEST(ModelStore, TakesATreeOfAnyDepth) {
  constexpr unsigned int depth = 20000;
  tree::decision_tree chain = grown(load_csv("a,c\n1,x\n1,x\n2,y\n2,y\n"));
  const tree::tree_node leaf{tree::tree_node::no_attribute, {}, 0, 0, 1, 1,
                             {{0, 1e-30F}, {1, 2e-30F}}};
  chain.nodes.assign(2 * depth + 1, leaf);
  for (unsigned int i = 0; i < 2 * depth; i += 2) {
    chain.nodes[i] = {0, {"1", 2}, i + 1, 2, i == 0 ? 0U : 2U, 1, leaf.class_weights};
    chain.nodes[i + 2].branch = 2;
  }
  const temporary_file file("");
  tree::save_model(file.path(), chain);
  const tree::decision_tree t = tree::load_model(file.path());
  EXPECT_NEAR(tree::text_classifier(t)({tree::unknown_cell}).distribution[0], 1.0 / 3, 1e-9);
  EXPECT_EQ(text_of(t, {1}), "a <= 1: y (0)\na > 1: ... 20000 leaves below [2]\n");
}

}  // namespace
}  // namespace arbor::tests
