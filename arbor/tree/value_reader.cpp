#include "arbor/tree/value_reader.h"

#include <limits>
#include <string>
#include <utility>

#include "arbor/table/cells/plain_number.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

// The least integer of the type "integer", which no domain holds, is not on its scale.
constexpr int first_integer = -std::numeric_limits<int>::max();

std::optional<decimal_scale> scale_for(const impls::column& attribute) {
  if (const decimal_scale* scale = scale_of(attribute)) return *scale;
  const std::string data_type = attribute.get_o_set()->get_datatype();
  if (data_type == "uinteger") return decimal_scale();
  if (data_type == "integer") return decimal_scale{first_integer, 1, 0};
  return std::nullopt;
}

double as_float(double number) {
  return static_cast<double>(static_cast<float>(number));
}

}  // namespace

value_reader::value_reader(const impls::column& attribute, number_form form)
    : column(&attribute),
      is_continuous(attribute.is_continuous()),
      scale(scale_for(attribute)),
      are_integers(scale && scale_of(attribute) == nullptr),
      first_position(are_integers ? static_cast<double>(scale->least) : 0),
      numbers(std::move(form)),
      are_usual(numbers.is_usual()),
      most_texts(attribute.get_o_set()->size_of_known()) {}

double value_reader::number(const char* text) const {
  double value = 0;
  if (scale) return scale->position(text, value) ? value + first_position : unknown_value;
  return read_known_number(text, value) ? as_float(value) : unknown_value;
}

double value_reader::number(plain_number plain) const {
  if (!scale) return as_float(value_of(plain));
  if (are_integers && is_plain_integer(plain)) return static_cast<double>(plain_digits(plain));
  return scale->position(plain) + first_position;
}

double value_reader::number(cell_text text) const {
  int value = 0;
  if (read_plain_integer(text, value)) {
    if (are_integers) return value;
    return scale ? scale->position(plain_integer(value)) : as_float(value);
  }
  if (!are_usual) {
    std::string storage;
    const char* const usual = usual_text(numbers, text.begin, storage);
    return usual == nullptr ? unknown_value : number(usual);
  }
  if (scale) {
    const plain_number plain = read_plain_number(text);
    if (plain != no_plain_number) return number(plain);
  }
  return number(text.begin);
}

// Keeps only texts of values that the attribute has, and no more than there are of these: a file
// may write the same number in any number of ways.
double value_reader::code(cell_text text) {
  if (const unsigned int known = texts.find(text)) return codes[known - 1];
  unsigned int found = 0;
  std::string storage;
  const bool are_numbers = column->get_o_set()->get_datatype() != "string";
  const char* const value = are_numbers ? usual_text(numbers, text.begin, storage) : text.begin;
  if (value == nullptr || !find_value(*column, value, found)) return unknown_value;
  if (found > 0 && codes.size() < most_texts) {
    codes.push_back(found);
    texts.code_of(text);
  }
  return found;
}

}  // namespace arbor::tree
