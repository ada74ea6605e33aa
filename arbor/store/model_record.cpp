// In the encodings of obinstream:
//
//   class column, its record without rows
//   attribute count u32 | for each attribute its column's record without rows
//   node count u32 | for each node, the root first and every child after its parent:
//     tested attribute u32 (all ones: a leaf) | split, record of a partition_desc |
//     first child u32 | child count u32 | branch u32 | share f32 | for each class its weight f32

#include "arbor/store/model_record.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "arbor/store/model_check.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/obinstream.h"

namespace arbor::tree {

namespace {

using impls::column;
using strata::inpout::ibinstream;
using strata::inpout::memory_device;
using strata::inpout::obinstream;

// The fewest bytes of a node without its classes: five numbers of four and a split without text.
constexpr unsigned int least_node_bytes = 5 * 4 + 5;

std::unique_ptr<column> read_column_record(ibinstream& in) {
  column* loaded = nullptr;
  std::string error;
  impls::read_column(in, loaded, error);
  if (loaded == nullptr) throw std::runtime_error("it lacks a column");
  return std::unique_ptr<column>(loaded);
}

void read_columns(ibinstream& in, decision_tree& tree) {
  tree.class_column = read_column_record(in);
  check_class_column(*tree.class_column);
  unsigned int count = 0;
  in >> count;
  in.expect(count, 1);
  for (unsigned int i = 0; i < count; ++i) {
    tree.attributes.push_back(read_column_record(in));
    check_attribute(*tree.attributes.back());
  }
}

tree_node read_node(ibinstream& in, unsigned int classes) {
  tree_node node;
  in >> node.attribute >> node.split >> node.first_child >> node.child_count >> node.branch >>
      node.share;
  in.expect(classes, sizeof(float));
  node.class_weights.resize(classes);
  in.read_block(node.class_weights.data(), classes);
  return node;
}

}  // namespace

std::vector<unsigned char> model_record(const decision_tree& tree) {
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

decision_tree read_model_record(std::vector<unsigned char> record) {
  memory_device device(std::move(record));
  ibinstream in(device);
  decision_tree tree;
  read_columns(in, tree);
  unsigned int count = 0;
  in >> count;
  if (count == 0) throw std::runtime_error("it has no nodes");
  in.expect(count, least_node_bytes + static_cast<unsigned int>(sizeof(float)));
  const unsigned int classes = tree.class_column->get_distinct() - 1;
  for (unsigned int i = 0; i < count; ++i) tree.nodes.push_back(read_node(in, classes));
  if (device.remaining() != 0) throw std::runtime_error("something follows the last node");
  check_nodes(tree);
  return tree;
}

}  // namespace arbor::tree
