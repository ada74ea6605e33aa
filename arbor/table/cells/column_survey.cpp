#include "arbor/table/cells/column_survey.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "arbor/table/cells/decimal_codes.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

// Whether a number is written as an integer: blanks, one of these signs or none, and digits.
bool is_written_whole(const char* number, const char* signs) {
  number += std::strspn(number, " ");
  if (std::strchr(signs, *number) != nullptr) ++number;
  return number[std::strspn(number, "0123456789")] == '\0';
}

// Of both integer types the domains refuse what is out of these ranges.
bool is_integer(const char* text, double number) {
  return std::fabs(number) <= std::numeric_limits<int>::max() && is_written_whole(text, "+-");
}

bool is_unsigned(const char* text, double number) {
  return number <= std::numeric_limits<unsigned int>::max() && is_written_whole(text, "+");
}

// Whether all cells that are kept as plain numbers are of the type uinteger.
bool are_unsigned(column_cells& cells) {
  bool are = true;
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; are && i < count; ++i) {
      if (column_cells::is_unknown(entries[i]) || column_cells::is_text(entries[i])) continue;
      are = plain_decimals(entries[i]) == 0 && entries[i] >= 0 &&
            plain_digits(entries[i]) <= std::numeric_limits<unsigned int>::max();
    }
  });
  return are;
}

// The narrowest data type of a column of numbers.
std::string type_of_numbers(column_cells& cells, column_survey& survey) {
  bool integers = !cells.has_fractions();
  bool unsigned_integers = are_unsigned(cells);
  for (unsigned int code = 1; code <= cells.texts().size(); ++code) {
    const double number = survey.text_numbers[code - 1];
    integers = integers && is_integer(cells.texts().text(code), number);
    unsigned_integers = unsigned_integers && is_unsigned(cells.texts().text(code), number);
  }
  if (integers) return "integer";
  if (unsigned_integers) return "uinteger";
  if (const std::optional<decimal_scale> scale = common_scale(cells))
    survey.scale = std::make_unique<decimal_scale>(*scale);
  return survey.scale ? "decimal" : "float";
}

}  // namespace

column_survey surveyed(column_cells& cells, const cell_counts& counts, const number_form& form) {
  column_survey survey;
  const text_dictionary& texts = cells.texts();
  survey.number_cells = counts.numbers();
  std::string storage;
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    const char* const usual = usual_text(form, texts.text(code), storage);
    double number = 0;
    if (usual != nullptr && read_known_number(usual, number)) {
      survey.number_cells += counts.texts[code];
    } else {
      survey.others.push_back({texts.text(code), counts.texts[code]});
      if (survey.others.size() == other_texts_end) break;
    }
  }
  if (!survey.others.empty()) {
    survey.data_type = "string";
  } else if (survey.number_cells > 0) {
    survey.text_numbers = usual_numbers(cells, form);
    survey.data_type = type_of_numbers(cells, survey);
  }
  return survey;
}

std::vector<double> usual_numbers(column_cells& cells, const number_form& form) {
  if (!form.is_usual()) {
    std::string storage;
    cells.replace_texts(
        [&](const char* text) { return std::string(usual_text(form, text, storage)); });
  }
  std::vector<double> numbers(cells.texts().size(), 0.0);
  for (unsigned int code = 1; code <= cells.texts().size(); ++code)
    read_known_number(cells.texts().text(code), numbers[code - 1]);
  return numbers;
}

bool is_of_type(const std::string& data_type, const number_form& form, const char* text) {
  std::string storage;
  const char* const usual = usual_text(form, text, storage);
  double number = 0;
  if (usual == nullptr || !read_known_number(usual, number)) return false;
  if (data_type == "integer") return is_integer(usual, number);
  if (data_type == "uinteger") return is_unsigned(usual, number);
  decimal_number exact;
  return data_type != "decimal" || read_decimal(usual, exact);
}

}  // namespace arbor::tree
