#include "arbor/report/exports/c_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <vector>

#include "arbor/csv/shown_text.h"
#include "arbor/report/exports/exported_values.h"
#include "arbor/report/node_text.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

using impls::column;

bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// Letters, digits and single underscores, the first one a letter; of a long name the beginning.
// Two underscores are reserved in C++.
std::string identifier_of(const std::string& name) {
  constexpr std::size_t most = 40;
  std::string result;
  for (const char c : name) {
    if (result.size() == most) break;
    if (is_letter(c) || (is_digit(c) && !result.empty())) {
      result += c;
    } else if (!result.empty() && result.back() != '_') {
      result += '_';
    }
  }
  return result.empty() ? "x" : result;
}

// Whether a program may already give a meaning to a name. Names without small letters are those of
// macros; some compilers have the last few.
bool is_taken(const std::string& identifier) {
  static const std::set<std::string> words{
      "alignas",      "alignof",   "and",           "and_eq",       "asm",
      "auto",         "bitand",    "bitor",         "bool",         "break",
      "case",         "catch",     "char",          "class",        "co_await",
      "co_return",    "co_yield",  "compl",         "concept",      "const",
      "const_cast",   "consteval", "constexpr",     "constinit",    "continue",
      "decltype",     "default",   "delete",        "do",           "double",
      "dynamic_cast", "else",      "enum",          "explicit",     "export",
      "extern",       "false",     "float",         "for",          "friend",
      "goto",         "if",        "inline",        "int",          "long",
      "mutable",      "namespace", "new",           "noexcept",     "not",
      "not_eq",       "nullptr",   "operator",      "or",           "or_eq",
      "private",      "protected", "public",        "register",     "reinterpret_cast",
      "requires",     "restrict",  "return",        "short",        "signed",
      "sizeof",       "static",    "static_assert", "static_cast",  "struct",
      "switch",       "template",  "this",          "thread_local", "throw",
      "true",         "try",       "typedef",       "typeid",       "typename",
      "typeof",       "union",     "unsigned",      "using",        "virtual",
      "void",         "volatile",  "wchar_t",       "while",        "xor",
      "xor_eq",       "char8_t",   "char16_t",      "char32_t",     "typeof_unqual",
      "errno",        "linux",     "unix",          "i386",         "isnan",
      "isinf",        "isfinite",  "isnormal",      "signbit",      "fpclassify",
      "assert",       "near",      "far",           "huge",         "interface",
      "small"};
  return words.count(identifier) > 0 || std::none_of(identifier.begin(), identifier.end(),
                                                     [](char c) { return c >= 'a' && c <= 'z'; });
}

// The member of the structure for each attribute. A name that has to change gets the number of the
// attribute.
std::vector<std::string> member_names(const decision_tree& tree) {
  std::set<std::string> used;
  std::vector<std::string> names(tree.attributes.size());
  const auto is_good = [&](const std::string& name) {
    return identifier_of(name) == name && !is_taken(name);
  };
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string name = tree.attributes[i]->get_name();
    if (is_good(name)) used.insert(names[i] = name);
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!names[i].empty()) continue;
    std::string name = identifier_of(tree.attributes[i]->get_name());
    name += (name.back() == '_' ? "" : "_") + std::to_string(i);
    while (!used.insert(name).second) name += 'x';
    names[i] = name;
  }
  return names;
}

std::string c_double(double number) {
  if (std::isinf(number)) return number < 0 ? "-HUGE_VAL" : "HUGE_VAL";
  return double_text(number);
}

std::string c_float(float number) {
  const std::string text = shortest_text(number);
  return text + (text.find_first_of(".e") == std::string::npos ? ".0F" : "F");
}

// An integer or a decimal, of any number of digits.
std::string c_exact(const std::string& number) {
  return number.find('.') == std::string::npos ? number + ".0" : number;
}

std::string c_character(char c) {
  if (c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '?') return {c};
  return fmt::format("\\{:03o}", static_cast<unsigned char>(c));
}

std::string c_text(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) result += c_character(c);
  return result + '"';
}

// The texts of a table. C99 promises to take literals of 4095 characters; longer ones are tables of
// characters, which stand before it.
void write_texts(std::ostream& out, const char* storage, const std::string& declared,
                 const column& values, unsigned int count) {
  constexpr std::size_t most = 4095;
  for (unsigned int code = 1; code <= count; ++code) {
    const std::string text = value_text(values, code);
    if (text.size() <= most) continue;
    out << fmt::format("static const char {}_{}[] = {{", declared, code);
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (i % 16 == 0) out << "\n  ";
      out << '\'' << (text[i] == '\'' ? "\\'" : c_character(text[i])) << "', ";
    }
    out << "'\\0'};\n";
  }
  out << fmt::format("{}const char *const {}[{}] = {{\n", storage, declared, count);
  for (unsigned int code = 1; code <= count; ++code) {
    const std::string text = value_text(values, code);
    const bool is_long = text.size() > most;
    out << "  " << (is_long ? fmt::format("{}_{}", declared, code) : c_text(text)) << ",\n";
  }
  out << "};\n";
}

// The number of a value or threshold as the function compares it.
std::string c_number(const column& attribute, const std::string& text) {
  const value_form form = form_of(attribute);
  if (form == value_form::exact_number) return c_exact(text);
  return c_double(form == value_form::single_number ? static_cast<double>(single_number(text))
                                                    : double_number(text));
}

constexpr const char* find_text = R"(
/* The number of a text in an ascending list, from 1 on; 0 if it is not there. */
static int find_text(const char *text, const char *const *list, int count) {
  int low = 0, high = count;
  if (text == NULL) return 0;
  while (low < high) {
    const int middle = low + (high - low) / 2;
    const int order = strcmp(text, list[middle]);
    if (order == 0) return middle + 1;
    if (order < 0) high = middle; else low = middle + 1;
  }
  return 0;
}
)";

constexpr const char* find_number = R"(
/* The same for a number. */
static int find_number(double number, const double *list, int count) {
  int low = 0, high = count;
  while (low < high) {
    const int middle = low + (high - low) / 2;
    if (number == list[middle]) return middle + 1;
    if (number < list[middle]) high = middle; else low = middle + 1;
  }
  return 0;
}
)";

constexpr const char* find_branch = R"(
/* The child of a test on the branch of a value; -1 if there is none. */
static int find_branch(const struct @_node *test, int value) {
  int low = test->first_child, high = low + test->child_count;
  while (low < high) {
    const int middle = low + (high - low) / 2;
    if (value == @_nodes[middle].branch) return middle;
    if (value < @_nodes[middle].branch) high = middle; else low = middle + 1;
  }
  return -1;
}
)";

constexpr const char* find_side = R"(
/* The child of a test on the side of a number; -1 if the number is unknown. */
static int find_side(const struct @_node *test, double number) {
  if (number != number) return -1;
  return test->first_child + (number > test->threshold ? 1 : 0);
}
)";

constexpr const char* predict_in_c = R"(
int predict_@(const struct @_case *values, double *probabilities, struct @_visit *work) {
  int visits = 1, predicted = 0, place, i;
  double greatest = 0, sum = 0;
  work[0].node = 0;
  work[0].parent = 0;
  work[0].weight = 1;
  for (place = 0; place < visits; ++place) { /* from the root down */
    const struct @_node *const node = &@_nodes[work[place].node];
    const double weight = work[place].weight;
    if (node->child_count == 0) {
      if (weight > greatest) greatest = weight;
    } else {
      const int known = @_child(values, node);
      const int first = known < 0 ? node->first_child : known;
      const int end = known < 0 ? first + node->child_count : first + 1;
      int child;
      work[place].weight = 0;
      for (child = first; child < end; ++child) {
        work[visits].node = child;
        work[visits].parent = place;
        work[visits].weight = known < 0 ? weight * @_nodes[child].share : weight;
        ++visits;
      }
    }
  }
  for (i = 0; i < @_class_count; ++i) probabilities[i] = 0;
  for (place = visits; place-- > 0;) { /* from the leaves up */
    const int index = work[place].node;
    const double weight = work[place].weight;
    if (weight != 0) {
      const double above = index == 0 ? 0 : %1;
      const double factor = weight / (@_nodes[index].cases + above);
      for (i = @_nodes[index].first_weight; i < @_nodes[index + 1].first_weight; ++i)
        probabilities[@_weights[i].entry] += factor * @_weights[i].weight;
      if (above * factor > %2 * greatest)
        work[work[place].parent].weight += above * factor;
    }
  }
  for (i = 0; i < @_class_count; ++i) sum += probabilities[i];
  if (!(sum > 0 && sum < HUGE_VAL)) { /* too small or too large: the classes of the root */
    sum = 0;
    for (i = 0; i < @_class_count; ++i) probabilities[i] = 0;
    for (i = 0; i < @_nodes[1].first_weight; ++i)
      probabilities[@_weights[i].entry] += 1 / @_nodes[0].cases * @_weights[i].weight;
    for (i = 0; i < @_class_count; ++i) sum += probabilities[i];
  }
  for (i = 0; i < @_class_count; ++i) {
    probabilities[i] /= sum;
    if (probabilities[i] > probabilities[predicted]) predicted = i;
  }
  return predicted;
}

#ifdef __cplusplus
}
#endif
)";

// Writes code with the name of the tree in the place of each "@".
class c_writer {
 public:
  c_writer(std::ostream& to, const decision_tree& of_tree)
      : out(to),
        tree(of_tree),
        name(identifier_of(of_tree.class_column->get_name())),
        members(member_names(of_tree)) {
    if (name.back() == '_') name.pop_back();
  }

  void write();

 private:
  void code(const char* text) {
    for (; *text != '\0'; ++text) {
      if (*text == '@') {
        out << name;
      } else if (*text == '%') {
        out << double_text(*++text == '1' ? parent_weight : negligible_weight);
      } else {
        out << *text;
      }
    }
  }
  template <class Wanted>
  bool have_attribute(Wanted wanted) const {
    return std::any_of(tree.attributes.begin(), tree.attributes.end(),
                       [&](const auto& attribute) { return wanted(*attribute); });
  }
  void write_declarations();
  void write_values();
  void write_nodes();
  void write_weights();
  void write_child();

  std::ostream& out;
  const decision_tree& tree;
  std::string name;
  std::vector<std::string> members;  // by attribute
};

void c_writer::write_declarations() {
  code("#include <math.h>\n#include <stddef.h>\n#include <string.h>\n\n");
  code("#if defined(__clang__)\n#pragma STDC FP_CONTRACT OFF\n#endif\n\n");
  code("#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n");
  code("enum { @_class_count = ");
  out << tree.class_count();
  code(", @_node_count = ");
  out << tree.nodes.size();
  code(" };\n\n/* A case: its values. */\nstruct @_case {\n");
  for (std::size_t i = 0; i < members.size(); ++i) {
    const column& attribute = *tree.attributes[i];
    const bool is_text = form_of(attribute) == value_form::text;
    out << (is_text ? "  const char *" : "  double ") << members[i] << "; /* "
        << comment_text(in_quotes(attribute.get_name())) << " */\n";
  }
  if (members.empty()) code("  int no_attributes;\n");
  code("};\n\n/* A node that a case comes to. */\nstruct @_visit {\n");
  code("  int node, parent;\n  double weight;\n};\n\n");
  code("/* The names of the classes. */\nextern const char *const @_classes[@_class_count];\n\n");
  code(
      "/* Returns the predicted class, an index of @_classes, and sets the probability of each.\n");
  code("   probabilities has room for @_class_count of them, work for @_node_count visits. */\n");
  code("int predict_@(const struct @_case *values, double *probabilities, ");
  code("struct @_visit *work);\n\n");
}

// The classes, and of each discrete attribute its values, by code.
void c_writer::write_values() {
  write_texts(out, "", name + "_classes", *tree.class_column,
              static_cast<unsigned int>(tree.class_count()));
  for (std::size_t i = 0; i < tree.attributes.size(); ++i) {
    const column& attribute = *tree.attributes[i];
    if (attribute.is_continuous()) continue;
    const std::string table = fmt::format("{}_values_{}", name, i);
    const unsigned int count = attribute.get_o_set()->size_of_known();
    out << "\n/* " << comment_text(in_quotes(attribute.get_name())) << " */\n";
    if (form_of(attribute) == value_form::text) {
      write_texts(out, "static ", table, attribute, count);
      continue;
    }
    out << fmt::format("static const double {}[{}] = {{\n", table, count);
    for (unsigned int code = 1; code <= count; ++code)
      out << "  " << c_number(attribute, shortest_value(attribute, code)) << ",\n";
    out << "};\n";
  }
}

// A row for each node, and one after the last.
void c_writer::write_nodes() {
  code("\nstruct @_node {\n  double threshold; /* up to which numbers go to the first child */\n");
  code("  double cases;     /* the weight of the training cases */\n");
  code("  float share;      /* of the cases at the parent */\n");
  code("  int branch;       /* the number of the value that leads here, from 1 on */\n");
  code("  int attribute, first_child, child_count, first_weight;\n};\n\n");
  code("static const struct @_node @_nodes[@_node_count + 1] = {\n");
  std::size_t first_weight = 0;
  for (const tree_node& node : tree.nodes) {
    const bool is_test = !node.is_leaf();
    const bool is_continuous = is_test && tree.attributes[node.attribute]->is_continuous();
    std::string threshold = "0";
    if (is_continuous) {
      const column& tested = *tree.attributes[node.attribute];
      threshold = c_number(tested, test_threshold(tested, node));
    }
    out << fmt::format("  {{{}, {}, {}, {}, {}, {}, {}, {}}},\n", threshold,
                       double_text(weigh(node).cases), c_float(node.share), node.branch,
                       is_test ? std::to_string(node.attribute) : "-1", node.first_child,
                       node.child_count, first_weight);
    first_weight += node.class_weights.size();
  }
  out << fmt::format("  {{0, 0, 0.0F, 0, -1, 0, 0, {}}}\n}};\n", first_weight);
}

void c_writer::write_weights() {
  code("\n/* By node: the classes that occur, and the weights of their training cases. */\n");
  code("static const struct {\n  int entry;\n  float weight;\n} @_weights[] = {\n");
  for (const tree_node& node : tree.nodes) {
    const char* separator = "  ";
    for (const auto& [entry, weight] : node.class_weights) {
      out << separator << fmt::format("{{{}, {}}},", entry, c_float(weight));
      separator = " ";
    }
    out << '\n';
  }
  code("};\n");
}

void c_writer::write_child() {
  code("\n/* The child that a case goes to from a test; -1 if it goes to all of them. */\n");
  code("static int @_child(const struct @_case *values, const struct @_node *test) {\n");
  if (members.empty()) code("  (void)values;\n");
  code("  switch (test->attribute) {\n");
  for (std::size_t i = 0; i < members.size(); ++i) {
    const column& attribute = *tree.attributes[i];
    const value_form form = form_of(attribute);
    const std::string value =
        (form == value_form::single_number ? "(float)values->" : "values->") + members[i];
    out << fmt::format("    case {}: return ", i);
    if (attribute.is_continuous()) {
      out << fmt::format("find_side(test, {});\n", value);
    } else {
      out << fmt::format("find_branch(test, {}({}, {}_values_{}, {}));\n",
                         form == value_form::text ? "find_text" : "find_number", value, name, i,
                         attribute.get_o_set()->size_of_known());
    }
  }
  code("    default: return -1;\n  }\n}\n");
}

void c_writer::write() {
  std::vector<std::string> notes{
      "A text is a const char *, NULL if it is unknown; a number is a double, NAN if it is "
      "unknown.",
      "An unknown value, and one that no training case of a test had, goes down every branch."};
  for (const auto& attribute : tree.attributes) {
    if (exceeds_double(*attribute))
      notes.push_back(in_quotes(attribute->get_name()) +
                      " has more digits than a double: near a threshold it may go the wrong way.");
  }
  out << "/*\n";
  write_head(out, tree, "   ", notes);
  out << "*/\n";
  write_declarations();
  write_values();
  write_nodes();
  write_weights();
  if (have_attribute(
          [](const column& a) { return !a.is_continuous() && form_of(a) == value_form::text; }))
    code(find_text);
  if (have_attribute(
          [](const column& a) { return !a.is_continuous() && form_of(a) != value_form::text; }))
    code(find_number);
  if (have_attribute([](const column& a) { return !a.is_continuous(); })) code(find_branch);
  if (have_attribute([](const column& a) { return a.is_continuous(); })) code(find_side);
  write_child();
  code(predict_in_c);
}

}  // namespace

void write_c(std::ostream& out, const decision_tree& tree) {
  c_writer(out, tree).write();
}

}  // namespace arbor::tree
