#include "arbor/table/cells/memory_cells.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "arbor/table/cells/number_reading.h"

namespace arbor::tree {

namespace {

template <class Number>
bool is_no_number(Number number) {
  if constexpr (std::is_floating_point_v<Number>) return std::isnan(number);
  return false;
}

}  // namespace

std::optional<std::string> cell_of(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  if (text.find('\0') != text.npos) throw std::runtime_error("a text has a zero byte");
  if (text.find_first_of(",\"\r\n") == text.npos) {
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    text = text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
  }
  if (text.empty() || text == "?") return std::nullopt;
  return std::string(text);
}

memory_cells::memory_cells(const memory_column& of_column) : column(of_column) {
  if (!column.texts) return;
  texts.reserve(column.texts->size());
  for (const std::string& text : *column.texts) texts.push_back(cell_of(text));
  codes.assign(texts.size(), 0);
}

void memory_cells::add_to(column_cells& cells, std::size_t first, std::size_t end) {
  if (column.texts) return add_texts(cells, first, end);
  readable_copy copy;
  with_numbers(column.numbers, [&](auto number_of) {
    for (std::size_t row = first; row < end; ++row) {
      const auto number = number_of(row);
      if (column.is_unknown(row) || is_no_number(number)) {
        cells.add_unknown();
        continue;
      }
      const plain_number plain = plain_number_in(number, digits);
      if (plain != no_plain_number) {
        cells.add_number(plain);
      } else {
        cells.add_text(copy.of(file_text(number)));
      }
    }
  });
}

void memory_cells::add_texts(column_cells& cells, std::size_t first, std::size_t end) {
  readable_copy copy;
  with_numbers(column.numbers, [&](auto number_of) {
    for (std::size_t row = first; row < end; ++row) {
      const auto number = static_cast<std::size_t>(number_of(row));
      if (number >= texts.size() || column.is_unknown(row) || !texts[number]) {
        cells.add_unknown();
      } else if (codes[number] != 0) {
        cells.add_code(codes[number]);
      } else {
        const cell_text text = copy.of(*texts[number]);
        cells.add_text(text);
        // Cells that are kept as texts stay so, and their codes, until all rows have been added.
        if (cells.kept_as() == column_cells::form::texts) codes[number] = cells.texts().find(text);
      }
    }
  });
}

std::size_t memory_cells::text_of(std::size_t row) const {
  const auto number = with_numbers(
      column.numbers, [&](auto number_of) { return static_cast<std::size_t>(number_of(row)); });
  const bool is_known = number < texts.size() && !column.is_unknown(row) && texts[number];
  return is_known ? number : texts.size();
}

std::size_t memory_cells::row_with(std::string_view text, std::size_t first,
                                   std::size_t end) const {
  for (std::size_t row = first; row < end; ++row) {
    const std::size_t number = text_of(row);
    if (number < texts.size() && *texts[number] == text) return row;
  }
  return end;
}

std::size_t memory_cells::first_unknown() const {
  return with_numbers(column.numbers, [&](auto number_of) {
    std::size_t row = 0;
    while (column.texts ? text_of(row) < texts.size()
                        : !column.is_unknown(row) && !is_no_number(number_of(row)))
      ++row;
    return row;
  });
}

}  // namespace arbor::tree
