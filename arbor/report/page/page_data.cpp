#include "arbor/report/page/page_data.h"

#include <limits>
#include <optional>
#include <vector>

#include "arbor/csv/shown_text.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/attribute_importance.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

std::string text_in_html(std::string_view text) {
  std::string result;
  for (const char c : json_text(printable(text))) {
    switch (c) {
      case '<':
        result += "\\u003c";
        break;
      case '>':
        result += "\\u003e";
        break;
      case '&':
        result += "\\u0026";
        break;
      default:
        result += c;
    }
  }
  return result;
}

void text_member(json_writer& json, const char* key, std::string_view text) {
  json.key(key).scalar(text_in_html(text));
}

void page_origin(json_writer& json, const tree_origin& origin) {
  json.open('{');
  text_member(json, "table", origin.table);
  json.member("rows", std::size_t{origin.rows}).member("min_weight", origin.min_weight);
  const bool limited = origin.max_depth != std::numeric_limits<unsigned int>::max();
  json.member("max_depth", limited ? std::optional(origin.max_depth) : std::nullopt);
  json.member("confidence", origin.pruned ? std::optional(origin.confidence) : std::nullopt);
  json.close();
}

// By attribute and code: the place of a value in the list of those that some branch has.
using value_places = std::vector<std::vector<unsigned int>>;

constexpr unsigned int no_place = std::numeric_limits<unsigned int>::max();

value_places places_of_values(const decision_tree& tree) {
  value_places places(tree.attributes.size());
  for (const tree_node& test : tree.nodes) {
    if (test.is_leaf() || tree.attributes[test.attribute]->is_continuous()) continue;
    std::vector<unsigned int>& used = places[test.attribute];
    used.resize(tree.attributes[test.attribute]->get_distinct(), no_place);
    for (unsigned int i = 0; i < test.child_count; ++i)
      used[tree.nodes[test.first_child + i].branch] = 0;
  }
  for (std::vector<unsigned int>& used : places) {
    unsigned int next = 0;
    for (unsigned int& place : used) {
      if (place != no_place) place = next++;
    }
  }
  return places;
}

void page_attributes(json_writer& json, const decision_tree& tree, const value_places& places) {
  const std::vector<double> importance = importance_of_attributes(tree);
  json.open('[');
  for (std::size_t i = 0; i < tree.attributes.size(); ++i) {
    const impls::column& attribute = *tree.attributes[i];
    json.open('{');
    text_member(json, "name", attribute.get_name());
    text_member(json, "kind", attribute.get_type());
    text_member(json, "type", data_type_of(attribute));
    json.member("importance", static_cast<float>(importance[i]));
    json.key("values").open_numbers();
    for (unsigned int code = 0; code < places[i].size(); ++code) {
      if (places[i][code] != no_place) json.scalar(text_in_html(value_text(attribute, code)));
    }
    json.close().close();
  }
  json.close();
}

// A member with a number for each node.
template <class Number>
void node_numbers(json_writer& json, const char* key, const decision_tree& tree, Number number) {
  json.key(key).open_numbers();
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) json.scalar(std::to_string(number(i)));
  json.close();
}

void page_branches(json_writer& json, const decision_tree& tree, const value_places& places) {
  const std::vector<std::size_t> parents = node_parents(tree);
  node_numbers(json, "attribute", tree, [&](std::size_t i) {
    return tree.nodes[i].is_leaf() ? -1L : static_cast<long>(tree.nodes[i].attribute);
  });
  node_numbers(json, "first", tree, [&](std::size_t i) {
    return tree.nodes[i].is_leaf() ? 0U : tree.nodes[i].first_child;
  });
  node_numbers(json, "count", tree, [&](std::size_t i) { return tree.nodes[i].child_count; });
  node_numbers(json, "branch", tree, [&](std::size_t i) {
    if (i == 0) return 0U;
    const unsigned int tested = tree.nodes[parents[i]].attribute;
    const unsigned int branch = tree.nodes[i].branch;
    return tree.attributes[tested]->is_continuous() ? branch - 1 : places[tested][branch];
  });
  json.key("thresholds").open_numbers();
  for (const tree_node& node : tree.nodes) {
    if (node.is_leaf() || !tree.attributes[node.attribute]->is_continuous()) continue;
    json.scalar(text_in_html(test_threshold(*tree.attributes[node.attribute], node)));
  }
  json.close();
}

void page_weights(json_writer& json, const decision_tree& tree) {
  const std::vector<std::size_t> predicted = predicted_classes(tree);
  node_numbers(json, "predicted", tree, [&](std::size_t i) { return predicted[i]; });
  node_numbers(json, "sizes", tree,
               [&](std::size_t i) { return tree.nodes[i].class_weights.size(); });
  json.key("entries").open_numbers();
  for (const tree_node& node : tree.nodes) {
    for (const weighted_class& present : node.class_weights) json.value(present.entry);
  }
  json.close().key("weights").open_numbers();
  for (const tree_node& node : tree.nodes) {
    for (const weighted_class& present : node.class_weights)
      json.scalar(shortest_text(present.weight));
  }
  json.close();
}

void page_ratings(json_writer& json, const case_summary& cases, const table_rating& ratings) {
  json.open('[');
  for (const attribute_rating& rating : ratings.attributes) {
    json.open('{');
    text_member(json, "attribute", rating.name);
    text_member(json, "type", rating.data_type);
    json.member("values", rating.values).member("chosen", rating.chosen);
    json.member("unknown",
                static_cast<double>(rating.unknown_cells) / static_cast<double>(cases.rows));
    if (rating.split) {
      json.member("gain", rating.split->gain).member("judged", rating.split->judged_gain);
      json.member("ratio", rating.split->gain_ratio).member("branches", rating.split->branches);
      if (rating.split->threshold) text_member(json, "threshold", *rating.split->threshold);
    } else {
      text_member(json, "no_split", rating.no_split_reason);
    }
    json.close();
  }
  json.close();
}

void page_quality(json_writer& json, const evaluation& quality) {
  json.member("total", quality.matrix().total()).member("errors", quality.matrix().errors());
  json.member("accuracy", quality.accuracy()).member("accuracy_error", quality.accuracy_error());
  json.member("log_loss", quality.log_loss()).member("brier", quality.brier_score());
  json.member("commonest_class_error", quality.commonest_class_error());
  json.key("matrix").open_numbers();  // actual, predicted, weight
  for (const auto& [pair, weight] : quality.matrix().pairs())
    json.value(pair.first).value(pair.second).value(weight);
  json.close().key("classes").open('[');
  for (const class_quality& of_class : quality_by_class(quality.matrix())) {
    json.open_numbers().value(of_class.entry).value(of_class.actual).value(of_class.predicted);
    if (of_class.predicted > 0) {
      json.value(of_class.precision());
    } else {
      json.null();
    }
    if (of_class.actual > 0) {
      json.value(of_class.recall());
    } else {
      json.null();
    }
    json.value(of_class.f1()).close();
  }
  json.close();
}

}  // namespace

void write_page_data(std::ostream& out, const decision_tree& tree, const page_table* of_table) {
  const value_places places = places_of_values(tree);
  json_writer json(out);
  json.open('{');
  text_member(json, "class", tree.class_column->get_name());
  json.key("classes").open_numbers();
  for (std::size_t c = 0; c < tree.class_count(); ++c)
    json.scalar(text_in_html(class_text(*tree.class_column, c)));
  json.close();
  if (tree.origin) page_origin(json.key("origin"), *tree.origin);
  page_attributes(json.key("attributes"), tree, places);
  json.key("nodes").open('{');
  page_branches(json, tree, places);
  page_weights(json, tree);
  json.close();
  if (of_table != nullptr) {
    json.key("table").open('{');
    text_member(json, "name", of_table->name);
    json.member("rows", of_table->cases.rows);
    page_quality(json, of_table->quality);
    page_ratings(json.key("ratings"), of_table->cases, of_table->ratings);
    json.close();
  }
  json.close();
}

}  // namespace arbor::tree
