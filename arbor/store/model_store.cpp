// A model file, in the encodings of obinstream:
//
//   magic "ArborDT\n" | format version u32 | payload length u64 | CRC-32 of the payload u32 | payload
//
// and the payload:
//
//   class column, column record without rows | attribute count u32 | for each attribute its column record without rows
//   | node count u32 | for each node, the root first and every child behind its parent:
//     tested attribute u32 (all ones: a leaf) | split, record of a partition_desc | first child u32 | child count u32 |
//     branch u32 | share f32 | for each class its weight f32

#include "arbor/store/model_store.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "arbor/csv/input_file.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/store/file_replacement.h"
#include "arbor/table/value_text.h"
#include "arbor/utils/file_device.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/no_storage.h"
#include "arbor/utils/obinstream.h"

namespace arbor::tree {

namespace {

using impls::column;
using strata::inpout::file_device;
using strata::inpout::ibinstream;
using strata::inpout::memory_device;
using strata::inpout::obinstream;

constexpr std::array<unsigned char, 8> magic{'A', 'r', 'b', 'o', 'r', 'D', 'T', '\n'};
constexpr unsigned int format_version = 1;

unsigned int checksum(const std::vector<unsigned char>& payload) {
  return static_cast<unsigned int>(crc32_z(0, payload.data(), payload.size()));
}

std::vector<unsigned char> payload_of(const decision_tree& tree) {
  memory_device device;
  obinstream out(device);
  const auto count = [](const auto& list) { return static_cast<unsigned int>(list.size()); };
  out << static_cast<const column*>(tree.class_column.get()) << count(tree.attributes);
  for (const auto& attribute : tree.attributes) out << static_cast<const column*>(attribute.get());
  out << count(tree.nodes);
  for (const tree_node& node : tree.nodes) {
    out << node.attribute << node.split << node.first_child << node.child_count << node.branch
        << node.share;
    out.write_block(node.class_weights.data(), count(node.class_weights));
  }
  return device.bytes();
}

// The least bytes that a node takes: five numbers of four and a split without text.
constexpr unsigned int least_node_bytes = 5 * 4 + 5;

[[noreturn]] void refuse(const char* what) {
  throw std::runtime_error(what);
}

// Whether every value can be looked up, as those of a domain in order can. (Of the smallest doubles
// the text is not enough to tell.)
void check_domain(const column& checked) {
  const unsigned int codes = checked.get_distinct();
  if (checked.get_o_set()->get_datatype() == "double") return;
  for (unsigned int code = 1; code < codes; ++code) {
    unsigned int found = 0;
    if (!code_of_text(checked, value_text(checked, code).c_str(), found) || found != code) {
      refuse("the values of a column are out of order");
    }
  }
}

std::unique_ptr<column> read_column(ibinstream& in) {
  column* loaded = nullptr;
  std::string error;
  impls::read_column(in, loaded, error);
  std::unique_ptr<column> result(loaded);
  if (result == nullptr) refuse("it lacks a column");
  if (result->size() != 0) refuse("a column of it has rows");
  check_domain(*result);
  return result;
}

void check_weights(const tree_node& node) {
  double weight = 0;
  for (const float w : node.class_weights) {
    if (!(w >= 0) || !std::isfinite(w)) refuse("a class has no proper weight");
    weight += static_cast<double>(w);
  }
  if (!(weight > 0)) refuse("a node has no weight");
  // No branch has all; what float sums round is far less than that.
  if (!(node.share >= 0 && node.share <= 2)) refuse("a branch has no proper share");
}

// The one place where a tree from a file is checked, so that all others may trust it.
void check_node(const decision_tree& tree, std::size_t index, std::vector<bool>& has_parent) {
  const tree_node& node = tree.nodes[index];
  check_weights(node);
  if (node.is_leaf()) {
    if (node.child_count != 0) refuse("a leaf has branches");
    return;
  }
  if (node.attribute >= tree.attributes.size()) refuse("a node tests no attribute");
  const column& tested = *tree.attributes[node.attribute];
  const unsigned int branches = tested.is_continuous() ? 2 : tested.get_o_set()->size_of_known();
  if (tested.is_continuous() && tested.get_index(node.split.threshold.c_str()) == 0)
    refuse("a threshold is no value");
  if (node.child_count == 0 || (tested.is_continuous() && node.child_count != 2))
    refuse("a test has no branches");
  const auto end_child = static_cast<unsigned long long>(node.first_child) + node.child_count;
  if (node.first_child <= index || end_child > tree.nodes.size()) refuse("a branch is missing");
  unsigned int last_branch = 0;
  double shares = 0;
  for (unsigned int i = node.first_child; i < node.first_child + node.child_count; ++i) {
    const tree_node& child = tree.nodes[i];
    if (child.branch <= last_branch || child.branch > branches) refuse("a branch is out of order");
    if (has_parent[i]) refuse("a branch has two parents");
    has_parent[i] = true;
    last_branch = child.branch;
    shares += static_cast<double>(child.share);
  }
  if (!(shares > 0)) refuse("the branches of a test have no share");
}

decision_tree tree_of(std::vector<unsigned char> payload) {
  memory_device device(std::move(payload));
  ibinstream in(device);
  decision_tree tree;
  tree.class_column = read_column(in);
  if (!tree.class_column->is_class() || tree.class_column->get_range().second == 0)
    refuse("it has no class");
  const unsigned int classes = tree.class_column->get_distinct() - 1;
  unsigned int count = 0;
  in >> count;
  in.expect(count, 1);
  for (unsigned int i = 0; i < count; ++i) {
    tree.attributes.push_back(read_column(in));
    if (!tree.attributes.back()->is_discrete() && !tree.attributes.back()->is_continuous())
      refuse("an attribute is none");
  }
  in >> count;
  if (count == 0) refuse("it has no nodes");
  in.expect(count, least_node_bytes + static_cast<unsigned int>(sizeof(float)));
  for (unsigned int i = 0; i < count; ++i) {
    tree_node node;
    in >> node.attribute >> node.split >> node.first_child >> node.child_count >> node.branch >>
        node.share;
    in.expect(classes, sizeof(float));
    node.class_weights.resize(classes);
    in.read_block(node.class_weights.data(), classes);
    tree.nodes.push_back(std::move(node));
  }
  if (device.remaining() != 0) refuse("something follows the last node");
  std::vector<bool> has_parent(count, false);
  has_parent[0] = true;
  for (std::size_t i = 0; i < count; ++i) check_node(tree, i, has_parent);
  for (const bool found : has_parent) {
    if (!found) refuse("a node has no parent");
  }
  return tree;
}

}  // namespace

void save_model(const std::string& path, const decision_tree& tree) {
  const std::vector<unsigned char> payload = payload_of(tree);
  file_replacement file(path);
  try {
    file_device device(file.temporary_path(), file_device::mode::write);
    obinstream out(device);
    out.write_block(magic.data(), magic.size());
    out << format_version << static_cast<unsigned long long>(payload.size()) << checksum(payload);
    constexpr std::size_t part = 1U << 30U;
    for (std::size_t done = 0; done < payload.size(); done += part) {
      device.write(payload.data() + done,
                   static_cast<unsigned int>(std::min(part, payload.size() - done)));
    }
    device.close();
  } catch (const std::runtime_error& failure) {
    throw table_error(failure.what());
  }
  file.commit();
}

decision_tree load_model(const std::string& path) {
  input_file file(path);
  const auto fail = [&](const std::string& what) -> void {
    throw table_error(file.name() + ": " + what);
  };
  std::vector<unsigned char> bytes;
  std::array<char, 1U << 16U> part{};
  while (const std::size_t count = file.read(part.data(), part.size())) {
    if (bytes.empty() && std::memcmp(part.data(), magic.data(), std::min(count, magic.size())) != 0)
      break;
    bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
  }
  constexpr std::size_t head = magic.size() + 4 + 8 + 4;
  if (bytes.size() < magic.size()) fail("not a model of arbor grow");
  if (bytes.size() < head) fail("damaged: it ends too early");
  memory_device device({bytes.begin() + magic.size(), bytes.begin() + head});
  ibinstream in(device);
  unsigned int version = 0;
  unsigned long long length = 0;
  unsigned int expected = 0;
  in >> version >> length >> expected;
  if (version != format_version) {
    fail("a model of format " + std::to_string(version) + "; this program reads format " +
         std::to_string(format_version));
  }
  bytes.erase(bytes.begin(), bytes.begin() + head);
  if (length != bytes.size()) {
    fail("damaged: it holds " + std::to_string(bytes.size()) + " bytes of a tree of " +
         std::to_string(length));
  }
  if (checksum(bytes) != expected) fail("damaged: its checksum is wrong");
  try {
    return tree_of(std::move(bytes));
  } catch (const strata::util::no_storage&) {
    throw std::bad_alloc();  // no fault of the file
  } catch (const std::runtime_error& failure) {
    throw table_error(file.name() + ": damaged: " + printable(failure.what()));
  }
}

}  // namespace arbor::tree
