// What all exports of a tree share: how the values of its attributes are compared, and what the
// head of an export says.
//
//   if (form_of(column) == value_form::single_number) bound = bound_of(single_number(threshold));
//   write_head(out, tree, "-- ", {"The unknown value is NULL."});
#ifndef ARBOR_REPORT_EXPORTS_EXPORTED_VALUES_H
#define ARBOR_REPORT_EXPORTS_EXPORTED_VALUES_H

#include <ostream>
#include <string>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// How a known value is compared with those of an attribute.
enum class value_form {
  text,
  exact_number,   // an integer or a decimal
  single_number,  // rounded to single precision before it is compared
  double_number   // rounded to double precision
};
value_form form_of(const impls::column& attribute);

// Whether a double is too short for the numbers of an attribute, which have more than 15 digits.
bool exceeds_double(const impls::column& attribute);

// The number of a text in double or single precision.
double double_number(const std::string& text);
float single_number(const std::string& text);

// The numbers that round to at most `number` in single precision: those up to a greatest double,
// which is one of them or not. All numbers for infinity, which has none.
struct rounding_bound {
  double greatest;
  bool is_included;
  bool has_all;
};
rounding_bound bound_of(float number);

// A double in the fewest digits that read back to it; always with a point or an exponent. `number`
// is finite.
std::string double_text(double number);

// Throws std::runtime_error if a text of the tree that the language has to repeat is longer than
// a thousand bytes: the export would no longer be in proportion to the model.
void check_repeated_texts(const decision_tree& tree, const char* language);

// The class, the size and the origin of the tree, and its attributes with their kinds, in lines
// that are printable and do not end a comment.
std::vector<std::string> head_lines(const decision_tree& tree);

// Writes these lines and `notes`, each after `prefix`.
void write_head(std::ostream& out, const decision_tree& tree, const std::string& prefix,
                const std::vector<std::string>& notes);

// A printable text, without what a comment in C must not contain.
std::string comment_text(const std::string& printable_text);

}  // namespace arbor::tree

#endif
