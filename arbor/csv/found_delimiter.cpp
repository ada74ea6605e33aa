#include "arbor/csv/found_delimiter.h"

#include <algorithm>
#include <vector>

#include "arbor/csv/csv_form.h"
#include "arbor/csv/line_ends.h"
#include "arbor/csv/shown_text.h"

namespace arbor::tree {

namespace {

// What a character would be as the delimiter of the first rows.
struct candidate {
  std::vector<std::size_t> delimiters;  // by row
  bool between_digits = true;           // each of them, as decimal commas are
  bool adjacent = false;                // two of them, somewhere

  // Whether all rows have equally many, and the first row about as many.
  bool is_regular(bool has_names) const {
    if (delimiters.empty() || delimiters.front() == 0) return false;
    const std::size_t first = delimiters.front();
    const std::size_t usual = delimiters.size() > 1 ? delimiters[1] : first;
    const bool first_fits =
        first == usual || (has_names && (first + 1 == usual || first == usual + 1));
    return usual > 0 && first_fits &&
           std::all_of(delimiters.begin() + 1, delimiters.end(),
                       [&](std::size_t count) { return count == usual; });
  }
  std::size_t in_first_row() const { return delimiters.empty() ? 0 : delimiters.front(); }
  std::size_t in_last_row() const { return delimiters.empty() ? 0 : delimiters.back(); }
};

bool is_between_digits(std::string_view text, std::size_t at) {
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  return at > 0 && at + 1 < text.size() && is_digit(text[at - 1]) && is_digit(text[at + 1]);
}

candidate count_delimiters(std::string_view text, bool has_names, csv_form form) {
  constexpr std::size_t most_rows = 50;
  candidate found;
  std::size_t of_row = 0;
  bool begins_cell = true;
  bool in_quotes = false;
  bool is_empty = true;
  for (std::size_t i = 0; i < text.size() && found.delimiters.size() < most_rows; ++i) {
    const char c = text[i];
    if (in_quotes || (c == '"' && begins_cell)) {
      in_quotes = in_quotes != (c == '"');
      begins_cell = !in_quotes;  // a second quote, if it follows, stands for one
      is_empty = false;
    } else if (is_line_end(c)) {
      if (!is_empty) found.delimiters.push_back(of_row);
      of_row = 0;
      begins_cell = is_empty = true;
    } else if (c == form.delimiter) {
      ++of_row;
      const bool counts = !found.delimiters.empty() || !has_names;
      if (counts && !is_between_digits(text, i)) found.between_digits = false;
      if (i > 0 && text[i - 1] == c) found.adjacent = true;
      begins_cell = true;
      is_empty = false;
    } else if (!form.is_blank(c)) {
      begins_cell = is_empty = false;
    }
  }
  if (!is_empty && found.delimiters.empty()) found.delimiters.push_back(of_row);
  return found;
}

}  // namespace

char found_delimiter(std::string_view beginning, const input_options& options) {
  char best = '\0';
  char most_frequent = ',';
  std::size_t most = 0;
  std::size_t most_in_names = 0;
  bool decimal_commas = false;
  for (const char delimiter : {',', ';', '\t', '|'}) {
    const candidate of =
        count_delimiters(beginning, options.has_names, {delimiter, options.keeps_blanks});
    if (of.in_first_row() > most_in_names) {
      most_in_names = of.in_first_row();
      most_frequent = delimiter;
    }
    if (!of.is_regular(options.has_names)) continue;
    // Commas that all stand between digits are decimal commas if there is another delimiter.
    const bool replaces = of.in_last_row() > most || decimal_commas;
    decimal_commas = delimiter == ',' && of.between_digits;
    if (!replaces) continue;
    best = delimiter;
    most = of.in_last_row();
  }
  if (best != '\0') return best;
  const candidate spaces = count_delimiters(beginning, options.has_names, {' ', false});
  // Names and texts may have a space each where there is a single column.
  const bool is_single = spaces.in_last_row() < 2 && beginning.substr(0, 1) != "\"";
  const bool are_delimiters = most_in_names == 0 && !spaces.adjacent && !is_single;
  return are_delimiters && spaces.is_regular(options.has_names) ? ' ' : most_frequent;
}

std::optional<char> declared_delimiter(std::string_view beginning) {
  constexpr std::string_view declaration = "sep=";
  const std::size_t end = declaration.size() + 1;
  if (beginning.substr(0, declaration.size()) != declaration || beginning.size() <= end)
    return std::nullopt;
  const char delimiter = beginning[declaration.size()];
  if (delimiter == '"' || is_line_end(delimiter) || !is_line_end(beginning[end]))
    return std::nullopt;
  return delimiter;
}

std::string delimiter_name(char delimiter) {
  switch (delimiter) {
    case ',':
      return "commas";
    case ';':
      return "semicolons";
    case '\t':
      return "tabs";
    case '|':
      return "bars";
    case ' ':
      return "spaces";
    default:
      return in_quotes(std::string(1, delimiter));
  }
}

}  // namespace arbor::tree
