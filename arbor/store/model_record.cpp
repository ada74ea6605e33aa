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
//   only if a column is of decimals: count u32 of these columns, from 1 | for each of them, in
//     ascending order, its number u32 (0: the class column, from 1 on the attributes) |
//     decimals u32 | least number | step
//
// The column of decimals has the record of its steps, of the data type "uinteger"; see
// decimal_domain.h. Its least number and its step are integers of 128 bits, the low u64 first.
//
// Version 1 has no origin, and at the end of each node for each class its weight f32.

#include "arbor/store/model_record.h"

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "arbor/model/make_column.h"
#include "arbor/store/model_check.h"
#include "arbor/table/decimal_domain.h"
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
  std::unique_ptr<column> loaded = impls::read_column(in);
  if (loaded == nullptr) throw std::runtime_error("it lacks a column");
  return loaded;
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

// The class column is number 0, the attributes follow.
std::unique_ptr<column>& numbered_column(decision_tree& tree, unsigned int number) {
  return number == 0 ? tree.class_column : tree.attributes[number - 1];
}

wide_integer read_wide(ibinstream& in) {
  unsigned long long low = 0;
  unsigned long long high = 0;
  in >> low >> high;
  __extension__ using unsigned_wide = unsigned __int128;
  return static_cast<wide_integer>(static_cast<unsigned_wide>(high) << 64U | low);
}

void write_wide(obinstream& out, wide_integer number) {
  out << static_cast<unsigned long long>(number) << static_cast<unsigned long long>(number >> 64U);
}

decimal_scale read_scale(ibinstream& in) {
  decimal_scale scale;
  in >> scale.decimals;
  scale.least = read_wide(in);
  scale.step = read_wide(in);
  return scale;
}

// Makes the steps of a column decimals.
void put_on_scale(std::unique_ptr<column>& steps, const decimal_scale& scale) {
  impls::o_set& domain = *steps->get_o_set();
  check_scale(domain, scale);
  steps = impls::make_column(std::make_unique<decimal_domain>(scale, domain), steps->get_name(),
                             steps->get_type());
}

void read_scales(ibinstream& in, decision_tree& tree) {
  unsigned int count = 0;
  in >> count;
  if (count == 0) throw std::runtime_error("something follows the last node");
  std::size_t next = 0;  // the least number that may follow
  for (; count > 0; --count) {
    unsigned int number = 0;
    in >> number;
    if (number < next || number > tree.attributes.size())
      throw std::runtime_error("the scales of columns are out of order");
    put_on_scale(numbered_column(tree, number), read_scale(in));
    next = std::size_t{number} + 1;
  }
}

void write_scales(obinstream& out, const decision_tree& tree) {
  std::vector<std::pair<unsigned int, const decimal_scale*>> scales;
  const auto add = [&](const column& written, std::size_t number) {
    const decimal_scale* const scale = scale_of(written);
    if (scale != nullptr) scales.emplace_back(static_cast<unsigned int>(number), scale);
  };
  add(*tree.class_column, 0);
  for (std::size_t i = 0; i < tree.attributes.size(); ++i) add(*tree.attributes[i], i + 1);
  if (scales.empty()) return;
  out << static_cast<unsigned int>(scales.size());
  for (const auto& [number, scale] : scales) {
    out << number << scale->decimals;
    write_wide(out, scale->least);
    write_wide(out, scale->step);
  }
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
  write_scales(out, tree);
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
  if (device.remaining() != 0 && version > 1) read_scales(in, tree);
  if (device.remaining() != 0) throw std::runtime_error("something follows the last node");
  check_nodes(tree);
  return tree;
}

}  // namespace arbor::tree
