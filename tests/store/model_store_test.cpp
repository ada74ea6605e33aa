#include "arbor/store/model_store.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

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
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

constexpr std::size_t head = 8 + 4 + 8 + 4;  // magic, version, length, checksum

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A model with unknown values, a discrete, an integer and a float test.
std::string saved_model() {
  const temporary_file csv(
      "d,i,f,c\np,1,0.5,x\np,1,1.5,y\np,2,0.5,x\np,2,1.5,y\nq,1,?,x\nq,9,?,z\nq,1,0.1,x\nq,9,2.5,"
      "z\n?,1,0.5,x\n");
  const tree::table rows = tree::load_table(csv.path(), {});
  tree::grow_options options;
  options.min_weight = 1;
  options.prune = false;
  const temporary_file model("");
  tree::save_model(model.path(), tree::grow_tree(rows, rows.cases, options));
  return bytes_of(model.path());
}

// Loads a model of these bytes and does all that is done with one; the message without the path if
// it is refused.
std::string used(const std::string& bytes) {
  const temporary_file file(bytes);
  try {
    const tree::decision_tree t = tree::load_model(file.path());
    std::vector<const char*> unknown(t.attributes.size(), nullptr);
    tree::text_classifier say(t);
    say(unknown);
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
  const std::string bytes = saved_model();
  EXPECT_EQ(bytes, saved_model());
  EXPECT_THAT(used(bytes), testing::HasSubstr("f <= 0.5"));
  const temporary_file first(bytes);
  const temporary_file second("an older model");
  tree::save_model(second.path(), tree::load_model(first.path()));
  EXPECT_EQ(bytes_of(second.path()), bytes);
}

TEST(ModelStore, FollowsLinksAndKeepsTheRightsOfAFile) {
  const temporary_file bytes(saved_model());
  const tree::decision_tree t = tree::load_model(bytes.path());
  const temporary_file target("older");
  const std::string link = target.path() + ".link";
  ASSERT_EQ(symlink(target.path().c_str(), link.c_str()) + chmod(target.path().c_str(), 0600), 0);
  tree::save_model(link, t);
  struct stat told {};
  ASSERT_EQ(stat(target.path().c_str(), &told), 0);
  EXPECT_EQ(told.st_mode & 0777U, 0600U);
  EXPECT_EQ(bytes_of(target.path()), bytes_of(bytes.path()));
  EXPECT_EQ(unlink(link.c_str()), 0);
  EXPECT_THROW(tree::save_model("/dev/null", t), tree::table_error);
}

TEST(FileReplacement, LeavesNothingBehindWhenASignalEndsTheProcess) {
  const temporary_file target("older");
  const pid_t child = fork();
  if (child == 0) {
    const tree::file_replacement unfinished(target.path());
    raise(SIGTERM);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
  EXPECT_EQ(bytes_of(target.path()), "older");
  for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
    EXPECT_NE(entry.path().string().rfind(target.path() + ".", 0), 0U) << entry.path();
  }
}

TEST(ModelStore, RefusesEveryTruncationAndEveryChangedByte) {
  const std::string bytes = saved_model();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    EXPECT_THAT(used(bytes.substr(0, i)), testing::StartsWith(": ")) << i;
    for (const int flip : {0x01, 0x80, 0xFF}) {
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ flip);
      EXPECT_THAT(used(changed), testing::StartsWith(": ")) << i;
    }
  }
  EXPECT_THAT(used(bytes + "x"), testing::StartsWith(": damaged"));
  EXPECT_EQ(used("a,b\n1,2\n"), ": not a model of arbor grow");
}

TEST(ModelStore, IsNotHarmedByFaultsBehindACorrectChecksum) {
  const std::string bytes = saved_model();
#ifndef __SANITIZE_ADDRESS__  // which needs more address space than any limit leaves
  rlimit usual{};
  getrlimit(RLIMIT_AS, &usual);
  const rlimit tight{1U << 28, usual.rlim_max};
  setrlimit(RLIMIT_AS, &tight);
#endif
  std::size_t refused = 0;
  for (std::size_t i = head; i < bytes.size(); ++i) {
    for (const int flip : {0x01, 0x02, 0x80, 0xFF}) {
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ flip);
      correct_checksum(changed);
      refused += used(changed)[0] == ':' ? 1 : 0;
    }
    std::string shortened = bytes.substr(0, i);
    correct_checksum(shortened);
    EXPECT_THAT(used(shortened), testing::StartsWith(": damaged")) << i;
  }
  EXPECT_GT(refused, bytes.size());
#ifndef __SANITIZE_ADDRESS__
  setrlimit(RLIMIT_AS, &usual);
#endif
}

TEST(ModelStore, TakesATreeOfAnyDepth) {
  constexpr unsigned int depth = 100000;
  tree::decision_tree chain;
  chain.class_column.reset(make_column("class", "string", listed("x,y"))->clone(true));
  chain.attributes.emplace_back(make_column("continuous", "integer", listed("1,2"))->clone(true));
  for (unsigned int i = 0; i <= 2 * depth; ++i) {
    tree::tree_node node;
    node.branch = i == 0 ? 0 : 1 + (i - 1) % 2;
    node.share = 0.5;
    node.class_weights = {1, 2};
    if (i % 2 == 0 && i < 2 * depth) {
      node.attribute = 0;
      node.split = {"1", 2};
      node.first_child = i + 1;
      node.child_count = 2;
    }
    chain.nodes.push_back(std::move(node));
  }
  const temporary_file file("");
  tree::save_model(file.path(), chain);
  const tree::decision_tree t = tree::load_model(file.path());
  EXPECT_EQ(tree::measure(t).depth, depth);
  EXPECT_THAT(tree::text_classifier(t)({nullptr}),
              testing::ElementsAre(testing::DoubleNear(1.0 / 3, 1e-9), testing::_));
  EXPECT_EQ(tree::tree_as_text(t, 1), "x <= 1: y (3/1)\nx > 1: ... 100000 leaves below [2]\n");
}

}  // namespace
}  // namespace arbor::tests
