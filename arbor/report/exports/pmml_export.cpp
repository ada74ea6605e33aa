#include "arbor/report/exports/pmml_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "arbor/csv/shown_text.h"
#include "arbor/report/exports/exported_values.h"
#include "arbor/report/exports/node_estimates.h"
#include "arbor/report/node_text.h"
#include "arbor/report/node_walk.h"
#include "arbor/report/tree_report.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

using impls::column;

// What XML 1.0 has no way to write.
bool is_no_xml(char32_t point) {
  const bool is_control = point < 0x20 && point != '\t' && point != '\n' && point != '\r';
  return is_control || point == 0xFFFE || point == 0xFFFF;
}

std::string_view xml_entity(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return {};
  }
}

// The value of an attribute of an element, without the quotes around it.
std::string xml_text(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const utf8_character first = first_character(text);
    const std::string_view entity = xml_entity(text.front());
    if (!first.valid || is_no_xml(first.point)) {
      for (const char c : text.substr(0, first.length))
        result += fmt::format("\\x{:02X}", static_cast<unsigned char>(c));
    } else if (!entity.empty()) {
      result += entity;
    } else if (first.is_printable()) {
      result += text.substr(0, first.length);
    } else {
      result += fmt::format("&#{};", static_cast<unsigned int>(first.point));
    }
    text.remove_prefix(first.length);
  }
  return result;
}

// As XML writes an infinity.
std::string xml_number(const std::string& number) {
  return number == "inf" ? "INF" : number == "-inf" ? "-INF" : number;
}

std::string xml_value(const column& values, unsigned int code) {
  const std::string text = value_text(values, code);
  return form_of(values) == value_form::text ? xml_text(text) : xml_number(text);
}

const char* pmml_type(const column& field) {
  switch (form_of(field)) {
    case value_form::text:
      return "string";
    case value_form::exact_number:
    case value_form::double_number:
      return "double";
    case value_form::single_number:
      break;
  }
  return "float";
}

void write_field(std::ostream& out, const column& field) {
  out << fmt::format("    <DataField name=\"{}\" optype=\"{}\" dataType=\"{}\"",
                     xml_text(field.get_name()),
                     field.is_continuous() ? "continuous" : "categorical", pmml_type(field));
  if (field.is_continuous()) {
    out << "/>\n";
    return;
  }
  out << ">\n";
  const unsigned int values = field.get_o_set()->size_of_known();
  for (unsigned int code = 1; code <= values; ++code)
    out << fmt::format("      <Value value=\"{}\"/>\n", xml_value(field, code));
  out << "    </DataField>\n";
}

void write_schema(std::ostream& out, const decision_tree& tree) {
  out << "    <MiningSchema>\n"
      << fmt::format("      <MiningField name=\"{}\" usageType=\"target\"/>\n",
                     xml_text(tree.class_column->get_name()));
  for (const auto& attribute : tree.attributes) {
    out << fmt::format("      <MiningField name=\"{}\" invalidValueTreatment=\"asMissing\"/>\n",
                       xml_text(attribute->get_name()));
  }
  out << "    </MiningSchema>\n    <Output>\n"
         "      <OutputField name=\"predicted\" optype=\"categorical\" dataType=\"string\" "
         "feature=\"predictedValue\"/>\n    </Output>\n";
}

// The elements of one node after another; those that contain them are open.
class pmml_nodes {
 public:
  pmml_nodes(std::ostream& to, const decision_tree& of_tree)
      : out(to), tree(of_tree), parents(node_parents(of_tree)), estimates(of_tree) {}

  void write() {
    for_each_node(tree, whole_depth, [&](std::size_t node, std::size_t depth) {
      while (open > depth) close();
      write_node(node);
      ++open;
    });
    while (open > 0) close();
  }

 private:
  // Ends at some depth, or the text of a deep tree would grow with the square of its depth.
  std::string indent() const {
    constexpr std::size_t most_indented = 20;
    return std::string(4 + 2 * std::min(open, most_indented), ' ');
  }

  void close() {
    --open;
    out << indent() << "</Node>\n";
  }

  void write_node(std::size_t index) {
    const tree_node& node = tree.nodes[index];
    const column& classes = *tree.class_column;
    const auto class_value = [&](std::size_t entry) {
      return xml_value(classes, static_cast<unsigned int>(entry) + 1);
    };
    out << indent()
        << fmt::format("<Node id=\"{}\" score=\"{}\" recordCount=\"{}\">\n", index,
                       class_value(estimates.predicted(index)), weigh(node).cases);
    const std::string inside = indent() + "  ";
    out << inside << predicate(index) << '\n';
    for (const auto& [entry, probability] : estimates.at(index)) {
      out << inside
          << fmt::format(
                 "<ScoreDistribution value=\"{}\" recordCount=\"{}\" confidence=\"{}\" "
                 "probability=\"{}\"/>\n",
                 class_value(entry), shortest_text(weight_of(node, entry)), probability,
                 probability);
    }
  }

  std::string predicate(std::size_t index) const {
    if (index == 0) return "<True/>";
    const tree_node& test = tree.nodes[parents[index]];
    const tree_node& child = tree.nodes[index];
    const column& tested = *tree.attributes[test.attribute];
    const auto [comparison, value] =
        tested.is_continuous() ? std::pair(child.branch == 1 ? "lessOrEqual" : "greaterThan",
                                           xml_number(test_threshold(tested, test)))
                               : std::pair("equal", xml_value(tested, child.branch));
    return fmt::format("<SimplePredicate field=\"{}\" operator=\"{}\" value=\"{}\"/>",
                       xml_text(tested.get_name()), comparison, value);
  }

  std::ostream& out;
  const decision_tree& tree;
  const std::vector<std::size_t> parents;
  const node_estimates estimates;
  std::size_t open = 0;  // the elements that are not closed
};

}  // namespace

void write_pmml(std::ostream& out, const decision_tree& tree, const std::string& version) {
  check_repeated_texts(tree, "PMML");
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<PMML version=\"4.4\" xmlns=\"http://www.dmg.org/PMML-4_4\">\n"
      << fmt::format(
             "  <Header>\n    <Application name=\"arbor\" version=\"{}\"/>\n"
             "    <Annotation>",
             xml_text(version));
  const char* separator = "";
  for (const std::string& line : head_lines(tree)) {
    out << separator << xml_text(line);
    separator = "\n";
  }
  out << "</Annotation>\n  </Header>\n"
      << fmt::format("  <DataDictionary numberOfFields=\"{}\">\n", tree.attributes.size() + 1);
  write_field(out, *tree.class_column);
  for (const auto& attribute : tree.attributes) write_field(out, *attribute);
  out << "  </DataDictionary>\n"
         "  <TreeModel functionName=\"classification\" "
         "missingValueStrategy=\"weightedConfidence\" "
         "noTrueChildStrategy=\"returnLastPrediction\" splitCharacteristic=\"multiSplit\">\n";
  write_schema(out, tree);
  pmml_nodes(out, tree).write();
  out << "  </TreeModel>\n</PMML>\n";
}

}  // namespace arbor::tree
