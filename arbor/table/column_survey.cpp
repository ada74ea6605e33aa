#include "arbor/table/column_survey.h"

#include <cmath>
#include <cstring>
#include <limits>

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

}  // namespace

column_survey surveyed(column_cells& cells) {
  column_survey survey;
  const text_dictionary& texts = cells.texts();
  survey.number_cells = cells.plain_numbers();
  bool all_integers = !cells.has_fractions();
  const std::vector<std::size_t> counts =
      texts.size() == 0 ? std::vector<std::size_t>() : cells.text_counts();
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    double number = 0;
    if (read_known_number(texts.text(code), number)) {
      survey.text_numbers.push_back(number);
      survey.number_cells += counts[code];
      all_integers = all_integers && is_integer(texts.text(code), number);
    } else {
      survey.others.push_back({texts.text(code), counts[code]});
      if (survey.others.size() == other_texts_end) break;
    }
  }
  if (!survey.others.empty()) {
    survey.data_type = "string";
  } else if (survey.number_cells > 0) {
    survey.data_type = all_integers ? "integer" : "float";
  }
  return survey;
}

bool read_as(const std::string& data_type, const char* text, double& number) {
  if (!read_known_number(text, number)) return false;
  if (data_type == "integer") return is_integer(text, number);
  return data_type != "uinteger" || is_unsigned(text, number);
}

}  // namespace arbor::tree
