#include "arbor/table/cells/unusual_numbers.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace arbor::tree {

namespace {

std::string_view without_blanks(std::string_view text) {
  constexpr std::array<std::string_view, 3> blanks{" ", "\xC2\xA0", "\xE2\x80\xAF"};
  const auto is_first = [&](std::string_view blank) {
    return text.substr(0, blank.size()) == blank;
  };
  const auto is_last = [&](std::string_view blank) {
    return text.size() >= blank.size() && text.substr(text.size() - blank.size()) == blank;
  };
  for (;;) {
    const auto* const first = std::find_if(blanks.begin(), blanks.end(), is_first);
    if (first == blanks.end()) break;
    text.remove_prefix(first->size());
  }
  for (;;) {
    const auto* const last = std::find_if(blanks.begin(), blanks.end(), is_last);
    if (last == blanks.end()) return text;
    text.remove_suffix(last->size());
  }
}

// What precedes or follows a number without being part of it, blanks aside; empty if it is neither
// a sign nor a code of three letters.
std::string unit_in(std::string_view text) {
  constexpr std::array<std::string_view, 5> signs{"%", "$", "\xE2\x82\xAC", "\xC2\xA3", "\xC2\xA5"};
  text = without_blanks(text);
  const bool is_code = text.size() == 3 && std::all_of(text.begin(), text.end(),
                                                       [](char c) { return c >= 'A' && c <= 'Z'; });
  const bool is_unit = is_code || std::find(signs.begin(), signs.end(), text) != signs.end();
  return is_unit ? std::string(text) : "";
}

void add_unit(std::string_view text, number_form& form) {
  const std::string unit = unit_in(text);
  if (!unit.empty() && std::count(form.stripped.begin(), form.stripped.end(), unit) == 0)
    form.stripped.push_back(unit);
}

// Calls use(text) for each distinct text, and for each plain number that is no integer, until it
// returns false. Integers are numbers in any form.
template <class Use>
void for_each_text(column_cells& cells, Use use) {
  bool goes_on = true;
  for (unsigned int code = 1; goes_on && code <= cells.texts().size(); ++code)
    goes_on = use(cells.texts().text(code));
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; goes_on && i < count; ++i) {
      if (column_cells::is_unknown(entries[i]) || column_cells::is_text(entries[i])) continue;
      if (plain_decimals(entries[i]) > 0) goes_on = use(text_of(entries[i]).c_str());
    }
  });
}

bool are_numbers(column_cells& cells, const number_form& form) {
  bool are = true;
  std::string storage;
  for_each_text(cells,
                [&](const char* text) { return are = usual_text(form, text, storage) != nullptr; });
  return are;
}

bool are_same(column_cells& cells, const number_form& a, const number_form& b) {
  bool are = true;
  std::string of_a;
  std::string of_b;
  for_each_text(cells, [&](const char* text) {
    return are = usual_text(a, text, of_a) == std::string_view(usual_text(b, text, of_b));
  });
  return are;
}

}  // namespace

std::vector<number_form> unusual_forms(column_cells& cells, const std::string& sample,
                                       const number_form& in_use) {
  constexpr const char* digits = "0123456789";
  const std::size_t first_digit = sample.find_first_of(digits);
  if (first_digit == std::string::npos) return {};
  number_form form = in_use;
  const std::string_view text = sample;
  std::size_t end_of_unit = first_digit;
  while (end_of_unit > 0 && std::string_view("+-.,").find(text[end_of_unit - 1]) != text.npos)
    --end_of_unit;
  std::size_t first_of_unit = 0;
  if (end_of_unit > 0 && (text[0] == '-' || text[0] == '+')) first_of_unit = 1;
  add_unit(text.substr(first_of_unit, end_of_unit - first_of_unit), form);
  add_unit(text.substr(sample.find_last_of(digits) + 1), form);
  if (!form.is_usual() && are_numbers(cells, form)) return {form};
  if (in_use.grouped) return {};  // the marks have been chosen
  std::vector<number_form> forms;
  form.grouped = true;
  for (const char mark : {'.', ','}) {
    form.decimal_mark = mark;
    if (are_numbers(cells, form)) forms.push_back(form);
  }
  if (forms.size() == 2 && are_same(cells, forms[0], forms[1])) forms.pop_back();
  return forms;
}

}  // namespace arbor::tree
