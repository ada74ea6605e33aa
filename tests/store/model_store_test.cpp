#include "arbor/store/model_store.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "arbor/csv/table_error.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/file_replacement.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/text_classifier.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

constexpr std::size_t head = 8 + 4 + 8 + 4;  // magic, version, length, checksum

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Node 0 tests a discrete attribute, its children 1 and 2 a float and an integer; the nodes 3 to 6
// are leaves.
tree::decision_tree sample_tree() {
  const temporary_file csv(
      "d,f,i,c\np,0.5,?,x\np,0.5,1,x\np,1.5,1,y\np,1.5,9,y\np,1.5,9,y\nq,0.5,1,x\nq,0.5,1,x\nq,1.5,"
      "1,x\nq,?,9,y\nq,0.5,9,y\n");
  const tree::table rows = tree::load_table(csv.path(), {});
  tree::grow_options options;
  options.prune = false;
  return tree::grow_tree(rows, rows.cases, options);
}

std::string saved(const tree::decision_tree& t) {
  const temporary_file model("");
  tree::save_model(model.path(), t);
  return bytes_of(model.path());
}

// Loads a model of these bytes and does all that is done with one; the message without the path if
// it is refused.
std::string used(const std::string& bytes) {
  const temporary_file file(bytes);
  try {
    const tree::decision_tree t = tree::load_model(file.path());
    std::vector<const char*> unknown(t.attributes.size(), nullptr);
    static_cast<void>(tree::text_classifier(t)(unknown));
    return tree::tree_as_text(t, tree::whole_depth) + tree::tree_as_dot(t, 2) +
           tree::tree_as_json(t);
  } catch (const tree::table_error& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return std::string(error.what()).substr(file.path().size());
  }
}

void correct_checksum(std::string& bytes) {
  const std::uint64_t length = bytes.size() - head;
  const auto sum = static_cast<std::uint32_t>(
      crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()) + head, bytes.size() - head));
  std::memcpy(&bytes[12], &length, sizeof length);
  std::memcpy(&bytes[20], &sum, sizeof sum);
}

TEST(ModelStore, GivesTheSameTreeAndTheSameBytesAgain) {
  const std::string bytes = saved(sample_tree());
  EXPECT_EQ(bytes, saved(sample_tree()));
  EXPECT_THAT(used(bytes), testing::HasSubstr("f <= 0.5"));
  const temporary_file first(bytes);
  const temporary_file second("an older model");
  tree::save_model(second.path(), tree::load_model(first.path()));
  EXPECT_EQ(bytes_of(second.path()), bytes);
}

TEST(ModelStore, FollowsLinksAndKeepsTheRightsOfAFile) {
  const tree::decision_tree t = sample_tree();
  const temporary_file target("older");
  const std::string link = target.path() + ".link";
  ASSERT_EQ(symlink(target.path().c_str(), link.c_str()) + chmod(target.path().c_str(), 0600), 0);
  tree::save_model(link, t);
  struct stat now {};
  ASSERT_EQ(stat(target.path().c_str(), &now), 0);
  EXPECT_EQ(now.st_mode & 0777U, 0600U);
  EXPECT_EQ(bytes_of(target.path()), saved(t));
  EXPECT_EQ(unlink(link.c_str()), 0);
  EXPECT_THROW(tree::save_model("/dev/null", t), tree::table_error);
}

TEST(FileReplacement, LeavesNothingBehindWhenASignalEndsTheProcess) {
  const temporary_file place("");
  const std::filesystem::path folder = place.path() + ".folder";
  std::filesystem::create_directory(folder);
  const auto save_half = [&] {
    const tree::file_replacement unfinished(folder / "target");
    raise(SIGTERM);
  };
  EXPECT_EXIT(save_half(), testing::KilledBySignal(SIGTERM), "");
  EXPECT_TRUE(std::filesystem::remove(folder)) << "it was not empty";
}

template <class MakeFault>
void refuses(const std::string& message, MakeFault make_fault) {
  tree::decision_tree t = sample_tree();
  make_fault(t, t.nodes);
  EXPECT_EQ(used(saved(t)), ": damaged: " + message);
}

TEST(ModelStore, RefusesEachFaultOfATreeBehindACorrectChecksum) {
  refuses("a class has no proper weight", [](auto&, auto& n) { n[3].class_weights[1] = -1; });
  refuses("a class has no proper weight", [](auto&, auto& n) { n[3].class_weights[1] = INFINITY; });
  refuses("a node has no weight", [](auto&, auto& n) { n[6].class_weights = {0, 0}; });
  refuses("a branch has no proper share", [](auto&, auto& n) { n[6].share = -0.5; });
  refuses("a branch has no proper share", [](auto&, auto& n) { n[6].share = 2.5; });
  refuses("a leaf has branches", [](auto&, auto& n) { n[6].child_count = 1; });
  refuses("a node tests no attribute", [](auto&, auto& n) { n[0].attribute = 3; });
  refuses("a threshold is no value", [](auto&, auto& n) { n[1].split.threshold = "0.75"; });
  refuses("a test has no branches", [](auto&, auto& n) { n[0].child_count = 0; });
  refuses("a test has no branches", [](auto&, auto& n) { n[1].child_count = 1; });
  refuses("a test has no branches", [](auto&, auto& n) { n[1].child_count = 3; });
  refuses("a branch is missing", [](auto&, auto& n) { n[0].first_child = 0; });
  refuses("a branch is missing", [](auto&, auto& n) { n[1].first_child = 6; });
  refuses("a branch is missing", [](auto&, auto& n) { n[1].first_child = ~0U; });
  refuses("a branch is out of order", [](auto&, auto& n) { n[1].branch = 0; });
  refuses("a branch is out of order", [](auto&, auto& n) { n[2].branch = 1; });
  refuses("a branch is out of order", [](auto&, auto& n) { n[2].branch = 3; });
  refuses("a branch is out of order", [](auto&, auto& n) { n[4].branch = 3; });
  refuses("a branch has two parents", [](auto&, auto& n) { n[2].first_child = 4; });
  refuses("the branches of a test have no share",
          [](auto&, auto& n) { n[1].share = n[2].share = 0; });
  refuses("a node has no parent", [](auto&, auto& n) { n.push_back(tree::tree_node(n[6])); });
  refuses("it has no nodes", [](auto&, auto& n) { n.clear(); });
  refuses("it has no class", [](auto& t, auto&) { std::swap(t.class_column, t.attributes[0]); });
  refuses("an attribute is neither discrete nor continuous",
          [](auto& t, auto&) { t.attributes[1].reset(t.class_column->clone(true)); });
  refuses("a column has rows", [](auto& t, auto&) { t.attributes[1]->push_back("0.5"); });
}

TEST(ModelStore, RefusesEveryTruncationAndChangedByteAndIsNotHarmedByThoseItCannotTell) {
  const std::string bytes = saved(sample_tree());
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
      refused += i >= head && used(changed)[0] == ':' ? 1 : 0;
    }
  }
  EXPECT_GT(refused, bytes.size() / 2);
  EXPECT_THAT(used(bytes + "x"), testing::HasSubstr(" bytes of a tree of "));
  EXPECT_EQ(used("a,b\n1,2\n"), ": not a model of arbor grow");
}

TEST(ModelStore, TakesATreeOfAnyDepth) {
  constexpr unsigned int depth = 100000;
  tree::decision_tree chain;
  chain.class_column.reset(make_column("class", "string", listed("x,y"))->clone(true));
  chain.attributes.emplace_back(make_column("continuous", "integer", listed("1,2"))->clone(true));
  const tree::tree_node leaf{tree::tree_node::no_attribute, {}, 0, 0, 1, 0.5F, {1, 2}};
  chain.nodes.assign(2 * depth + 1, leaf);
  for (unsigned int i = 0; i < 2 * depth; i += 2) {
    chain.nodes[i] = {0, {"1", 2}, i + 1, 2, i == 0 ? 0U : 2U, 0.5F, {1, 2}};
    chain.nodes[i + 2].branch = 2;
  }
  const temporary_file file("");
  tree::save_model(file.path(), chain);
  const tree::decision_tree t = tree::load_model(file.path());
  EXPECT_EQ(tree::size_of(t).depth, depth);
  EXPECT_NEAR(tree::text_classifier(t)({nullptr})[0], 1.0 / 3, 1e-9);
  EXPECT_EQ(tree::tree_as_text(t, 1), "x <= 1: y (3/1)\nx > 1: ... 100000 leaves below [2]\n");
}

}  // namespace
}  // namespace arbor::tests
