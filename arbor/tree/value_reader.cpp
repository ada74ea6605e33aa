#include "arbor/tree/value_reader.h"

#include "arbor/table/plain_number.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

value_reader::value_reader(const impls::column& attribute)
    : column(&attribute),
      is_continuous(attribute.is_continuous()),
      rounds(attribute.get_o_set()->get_datatype() == "float"),
      most_texts(attribute.get_o_set()->size_of_known()) {}

double value_reader::number(const char* text) const {
  double value = 0;
  return read_known_number(text, value) ? rounded(value) : unknown_value;
}

double value_reader::number(cell_text text) const {
  int value = 0;
  return read_plain_integer(text, value) ? rounded(value) : number(text.begin);
}

// Keeps only texts of values that the attribute has, and no more than there are of these: a file
// may write the same number in any number of ways.
double value_reader::code(cell_text text) {
  if (const unsigned int known = texts.find(text)) return codes[known - 1];
  unsigned int found = 0;
  if (!find_value(*column, text.begin, found)) return unknown_value;
  if (found > 0 && codes.size() < most_texts) {
    codes.push_back(found);
    texts.code_of(text);
  }
  return found;
}

}  // namespace arbor::tree
