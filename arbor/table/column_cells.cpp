#include "arbor/table/column_cells.h"

#include <utility>

#include "arbor/utils/number_text.h"

namespace arbor::tree {

column_cells::column_cells(plain may_be_kept)
    : kept(may_be_kept == plain::none ? form::texts : form::integers), keepable(may_be_kept) {
  if (keepable == plain::all && !strata::util::point_is_dot()) keepable = plain::integers;
}

void column_cells::add_unknown() {
  ++unknown;
  if (kept == form::numbers) {
    wide.push_back(no_plain_number);
  } else {
    narrow.push_back(unknown_key);
  }
}

// For any text but the plain integers of few digits that the first form holds.
bool column_cells::add_other(cell_text text) {
  plain_number number = read_plain_number(text);
  int integer = 0;
  const bool is_integer = number != no_plain_number && is_plain_integer(number, integer);
  if (kept == form::integers && is_integer) {
    narrow.push_back(key_of(integer));
    return false;
  }
  if (keepable != plain::all && !is_integer) number = no_plain_number;
  if (number == no_plain_number && kept == form::integers && narrow.size() == unknown) {
    kept = form::texts;  // no number so far, so there may be none at all
    return add(text);
  }
  keep_as_numbers();
  bool added = false;
  if (number == no_plain_number) {
    unsigned int code = 0;
    added = add_to_dictionary(text, code);
    number = first_text + static_cast<plain_number>(code) * 32;
  } else if (!is_integer) {
    fractions = true;
  }
  wide.push_back(number);
  return added;
}

std::vector<std::size_t> column_cells::text_counts() {
  std::vector<std::size_t> counts(dictionary.size() + 1ULL, 0);
  if (kept == form::texts) {
    narrow.for_each_block([&](const std::uint32_t* codes, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) ++counts[codes[i]];
    });
  }
  wide.for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (is_text(entries[i])) ++counts[text_code(entries[i])];
    }
  });
  return counts;
}

std::size_t column_cells::plain_numbers() {
  if (kept == form::texts) return 0;
  std::size_t cells = narrow.size() + wide.size() - unknown;
  wide.for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) cells -= is_text(entries[i]) ? 1 : 0;
  });
  return cells;
}

void column_cells::keep_as_numbers() {
  if (kept != form::integers) return;
  std::exchange(narrow, {}).consume([&](const std::uint32_t* keys, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      wide.push_back(keys[i] == unknown_key ? no_plain_number : plain_integer(integer_of(keys[i])));
    }
  });
  kept = form::numbers;
}

void column_cells::keep_as_texts() {
  if (kept == form::texts) return;
  keep_as_numbers();
  std::exchange(wide, {}).consume([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const plain_number entry = entries[i];
      narrow.push_back(is_unknown(entry) ? unknown_key
                       : is_text(entry)  ? text_code(entry)
                                         : dictionary.code_of(text_of(entry)));
    }
  });
  kept = form::texts;
}

void column_cells::recode_texts(const std::vector<unsigned int>& codes) {
  narrow.for_each_block([&](std::uint32_t* keys, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) keys[i] = codes[keys[i]];
  });
}

}  // namespace arbor::tree
