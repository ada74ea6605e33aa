#include "arbor/report/exports/python_export.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "arbor/csv/shown_text.h"
#include "arbor/report/exports/exported_values.h"
#include "arbor/report/node_text.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

std::string python_text(std::string_view text) {
  std::string result = "'";
  while (!text.empty()) {
    const utf8_character first = first_character(text);
    const char c = text.front();
    if (!first.valid) {
      result += fmt::format("\\udc{:02x}", static_cast<unsigned char>(c));
    } else if (c == '\'' || c == '\\') {
      result += std::string{'\\', c};
    } else if (first.is_printable()) {
      result += text.substr(0, first.length);
    } else {
      result += fmt::format("\\U{:08x}", static_cast<unsigned int>(first.point));
    }
    text.remove_prefix(first.length);
  }
  return result + "'";
}

// A text that the module reads as a number of the attribute, because a literal of a table would be
// a double.
std::string threshold_of(const decision_tree& tree, const tree_node& node) {
  const bool is_continuous = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
  if (!is_continuous) return "None";
  return "'" + test_threshold(*tree.attributes[node.attribute], node) + "'";
}

const char* reader_of(const impls::column& attribute) {
  switch (form_of(attribute)) {
    case value_form::text:
      return "str";
    case value_form::exact_number:
      return "_exact_number";
    case value_form::double_number:
      return "_double_number";
    case value_form::single_number:
      break;
  }
  return "_single_number";
}

constexpr const char* readers = R"(
import decimal
import re
import struct

_NUMBER = re.compile(r'\s*[-+]?(?:(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:e[-+]?[0-9]+)?|inf(?:inity)?)',
                     re.ASCII | re.IGNORECASE)


def _exact_number(value):
    """The number that a value is written as; None if it is no number."""
    text = str(value)
    return decimal.Decimal(text.strip()) if _NUMBER.fullmatch(text) else None


def _double_number(value):
    """The same, rounded to double precision."""
    text = str(value)
    return float(text) if _NUMBER.fullmatch(text) else None


def _single_number(value):
    """The same, rounded to single precision."""
    number = _double_number(value)
    if number is None:
        return None
    try:
        return struct.unpack('f', struct.pack('f', number))[0]
    except OverflowError:
        return float('inf') if number > 0 else float('-inf')

)";

constexpr const char* predict_in_python = R"(
for _i, _node in enumerate(_NODES):
    if _node[1] is not None:
        _NODES[_i] = (_node[0], _ATTRIBUTES[_node[0]][1](_node[1])) + _node[2:]
_CODES = [codes if codes is None else {read(codes[i]): i + 1 for i in range(len(codes))}
          for _, read, codes in _ATTRIBUTES]


def _child(case, node):
    """The child that a case goes to from a test; None if it goes to all of them."""
    attribute, threshold, first, count = node[:4]
    name, read, _ = _ATTRIBUTES[attribute]
    value = case[name]
    if value is not None:
        value = read(value)
    if value is None:
        return None
    if threshold is not None:
        return first + (value > threshold)
    code = _CODES[attribute].get(value, 0)
    low, high = first, first + count
    while low < high:
        middle = (low + high) // 2
        if _NODES[middle][4] == code:
            return middle
        if _NODES[middle][4] < code:
            low = middle + 1
        else:
            high = middle
    return None


def predict(case):
    """Return the predicted class of a case and a list with the probability of each of CLASSES.

    case -- a dictionary with the value of each attribute under its name. None is the unknown
        value; a name that is missing is a KeyError.
    """
    nodes, parents, weights = [0], [0], [1.0]
    greatest = 0.0
    place = 0
    while place < len(nodes):  # from the root down
        node = _NODES[nodes[place]]
        first, count = node[2:4]
        if count == 0:
            greatest = max(greatest, weights[place])
        else:
            child = _child(case, node)
            weight, weights[place] = weights[place], 0.0
            for next_node in range(first, first + count) if child is None else (child,):
                nodes.append(next_node)
                parents.append(place)
                weights.append(weight * _NODES[next_node][5] if child is None else weight)
        place += 1
    probabilities = [0.0] * len(CLASSES)
    for place in reversed(range(len(nodes))):  # from the leaves up
        weight = weights[place]
        if weight != 0:
            node = _NODES[nodes[place]]
            above = %1 if nodes[place] else 0.0
            factor = weight / (node[6] + above)
            for entry, of_class in node[7]:
                probabilities[entry] += factor * of_class
            if above * factor > %2 * greatest:
                weights[parents[place]] += above * factor
    total = _sum(probabilities)
    if not 0 < total < float('inf'):  # too small or too large: the classes of the root
        probabilities = [0.0] * len(CLASSES)
        for entry, of_class in _NODES[0][7]:
            probabilities[entry] += 1 / _NODES[0][6] * of_class
        total = _sum(probabilities)
    probabilities = [probability / total for probability in probabilities]
    return CLASSES[probabilities.index(max(probabilities))], probabilities


def _sum(numbers):
    """The sum, rounded at each addition; later versions of sum() round once."""
    total = 0.0
    for number in numbers:
        total += number
    return total
)";

// Code with the constants in the place of "%1" and "%2".
void write_code(std::ostream& out, const char* code) {
  for (; *code != '\0'; ++code) {
    if (*code != '%') {
      out << *code;
    } else {
      out << double_text(*++code == '1' ? parent_weight : negligible_weight);
    }
  }
}

void write_codes(std::ostream& out, const impls::column& values, unsigned int count) {
  out << "[\n";
  for (unsigned int code = 1; code <= count; ++code)
    out << "    " << python_text(value_text(values, code)) << ",\n";
  out << ']';
}

void write_attributes(std::ostream& out, const decision_tree& tree) {
  out << "# The name of each attribute, how its values are read, and the values in their order.\n"
         "_ATTRIBUTES = []\n";
  for (const auto& attribute : tree.attributes) {
    out << "_ATTRIBUTES.append((" << python_text(attribute->get_name()) << ", "
        << reader_of(*attribute) << ", ";
    if (attribute->is_continuous()) {
      out << "None";
    } else {
      write_codes(out, *attribute, attribute->get_o_set()->size_of_known());
    }
    out << "))\n";
  }
}

void write_python_nodes(std::ostream& out, const decision_tree& tree) {
  out << "\n# By node: the attribute that is tested, the threshold, the first child and how many\n"
         "# there are, the branch of the parent and its share of the cases, the weight of the\n"
         "# training cases, and the classes among them with their weights.\n_NODES = [\n";
  for (const tree_node& node : tree.nodes) {
    out << fmt::format("    ({}, {}, {}, {}, {}, {}, {}, (",
                       node.is_leaf() ? "None" : std::to_string(node.attribute),
                       threshold_of(tree, node), node.first_child, node.child_count, node.branch,
                       double_text(static_cast<double>(node.share)),
                       double_text(weigh(node).cases));
    const char* separator = "";
    for (const auto& [entry, weight] : node.class_weights) {
      out << separator << fmt::format("({}, {})", entry, double_text(static_cast<double>(weight)));
      separator = ", ";
    }
    out << (node.class_weights.size() == 1 ? ",)),\n" : ")),\n");
  }
  out << "]\n";
}

}  // namespace

void write_python(std::ostream& out, const decision_tree& tree) {
  write_head(out, tree, "# ",
             {"An unknown value is None, and a text where the attribute has numbers is one, too.",
              "A number may be an int, a float, a Decimal or its text in decimal digits.",
              "An unknown value, and one that no training case of a test had, goes down every "
              "branch."});
  out << readers << "\nCLASSES = ";
  write_codes(out, *tree.class_column, static_cast<unsigned int>(tree.class_count()));
  out << "\n\n";
  write_attributes(out, tree);
  write_python_nodes(out, tree);
  write_code(out, predict_in_python);
}

}  // namespace arbor::tree
