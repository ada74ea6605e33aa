// In the encodings of obinstream:
//
//   is the origin known u8 | if so: name of the training table text | its cases u64 |
//     minimum weight f32 | maximum depth u32 | pruned u8 | confidence f32
//   class column, its record without rows
//   attribute count u32 | for each attribute its column's record without rows
//   node count u32 | for each node, the root first and every child after its parent:
//     tested attribute u32 (all ones: a leaf) | split, record of a partition_desc |
//     first child u32 | child count u32 | branch u32 | share f32 | count u32 of the classes that
//     occur | for each of them, in ascending order, its code less 1 u32 | its weight f32
//
// Version 1 has no origin, and at the end of each node for each class its weight f32.

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

// The fewest bytes of a node: five numbers of four, a split without text and, in version 1, the
// weight of one class.
constexpr unsigned int least_node_bytes = 5 * 4 + 5 + 4;

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
  check_names(tree);
}

std::optional<tree_origin> read_origin(ibinstream& in) {
  bool known = false;
  in >> known;
  if (!known) return std::nullopt;
  tree_origin origin;
  in >> origin.table >> origin.rows >> origin.min_weight >> origin.max_depth >> origin.pruned >>
      origin.confidence;
  check_origin(origin);
  return origin;
}

std::vector<weighted_class> read_class_weights(ibinstream& in) {
  unsigned int count = 0;
  in >> count;
  in.expect(count, 2 * 4);
  std::vector<weighted_class> weights(count);
  for (weighted_class& present : weights) in >> present.entry >> present.weight;
  return weights;
}

std::vector<weighted_class> read_weights_of_all_classes(ibinstream& in, unsigned int classes) {
  in.expect(classes, sizeof(float));
  std::vector<float> weights(classes);
  in.read_block(weights.data(), classes);
  for (const float weight : weights) check_weight(weight);
  return present_classes(weights);
}

tree_node read_node(ibinstream& in, unsigned int version, std::size_t classes) {
  tree_node node;
  in >> node.attribute >> node.split >> node.first_child >> node.child_count >> node.branch >>
      node.share;
  node.class_weights = version == 1
                           ? read_weights_of_all_classes(in, static_cast<unsigned int>(classes))
                           : read_class_weights(in);
  return node;
}

void write_origin(obinstream& out, const std::optional<tree_origin>& origin) {
  out << origin.has_value();
  if (!origin) return;
  out << origin->table.c_str() << origin->rows << origin->min_weight << origin->max_depth
      << origin->pruned << origin->confidence;
}

}  // namespace

std::vector<unsigned char> model_record(const decision_tree& tree) {
  memory_device device;
  obinstream out(device);
  const auto count = [](const auto& list) { return static_cast<unsigned int>(list.size()); };
  write_origin(out, tree.origin);
  out << static_cast<const column*>(tree.class_column.get()) << count(tree.attributes);
  for (const auto& attribute : tree.attributes) out << static_cast<const column*>(attribute.get());
  out << count(tree.nodes);
  for (const tree_node& node : tree.nodes) {
    out << node.attribute << node.split << node.first_child << node.child_count << node.branch
        << node.share << count(node.class_weights);
    for (const auto& present : node.class_weights) out << present.entry << present.weight;
  }
  return device.bytes();
}

decision_tree read_model_record(std::vector<unsigned char> record, unsigned int version) {
  memory_device device(std::move(record));
  ibinstream in(device);
  decision_tree tree;
  if (version > 1) tree.origin = read_origin(in);
  read_columns(in, tree);
  unsigned int count = 0;
  in >> count;
  if (count == 0) throw std::runtime_error("it has no nodes");
  in.expect(count, least_node_bytes);
  tree.nodes.reserve(count);
  for (unsigned int i = 0; i < count; ++i)
    tree.nodes.push_back(read_node(in, version, tree.class_count()));
  if (device.remaining() != 0) throw std::runtime_error("something follows the last node");
  check_nodes(tree);
  return tree;
}

}  // namespace arbor::tree
