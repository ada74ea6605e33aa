#include "arbor/table/cells/column_cells.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "arbor/table/cells/distinct_cells.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

std::uint32_t key_of_integer(plain_number number) {
  return key_of(static_cast<int>(plain_digits(number)));
}

}  // namespace

std::size_t cell_counts::numbers() const {
  return texts.empty() ? known : known - std::accumulate(texts.begin() + 1, texts.end(), 0UL);
}

column_cells::column_cells(plain may_be_kept)
    : kept(may_be_kept == plain::none ? form::texts : form::integers), keepable(may_be_kept) {
  if (keepable == plain::all && !strata::util::point_is_dot()) keepable = plain::integers;
}

column_cells::column_cells(distinct_cells whole, column_cells part)
    : kept(form::integers), keepable(part.keepable) {
  dictionary = std::move(whole.texts);
  add_distinct(whole);
  add_part(part);
}

// All but the texts, which are in the dictionary.
void column_cells::add_distinct(const distinct_cells& whole) {
  whole.numbers.for_each(
      [&](plain_number number) { fractions = fractions || !is_plain_integer(number); });
  if (whole.numbers.size() == 0) {
    kept = form::texts;
  } else if (fractions || dictionary.size() > 0) {
    kept = form::numbers;
  }
  const auto add_texts = [&](unsigned int first, unsigned int end) {
    for (unsigned int code = first; code < end; ++code) {
      if (kept == form::texts) {
        narrow.push_back(code);
      } else {
        wide.push_back(text_entry(code));
      }
    }
  };
  const unsigned int leading =
      whole.texts_before_zero == distinct_cells::no_zero ? 0 : whole.texts_before_zero;
  add_texts(1, leading + 1);
  whole.numbers.for_each([&](plain_number number) {
    if (kept == form::integers) {
      narrow.push_back(key_of_integer(number));
    } else {
      wide.push_back(number);
    }
  });
  add_texts(leading + 1, dictionary.size() + 1);
  if (whole.counts.unknown > 0) add_unknown();
}

// Texts of the part that are not in the dictionary are plain numbers in other parts.
void column_cells::add_part(column_cells& part) {
  std::vector<plain_number> entries{no_plain_number};  // by its codes
  readable_copy copy;
  for (unsigned int code = 1; code <= part.dictionary.size(); ++code) {
    const cell_text text = copy.of(part.dictionary.view(code));
    const unsigned int own_code = dictionary.find(text);
    entries.push_back(own_code != 0 ? text_entry(own_code) : part.number_to_keep(text));
  }
  unknown += part.unknown;
  if (kept == form::numbers) part.keep_as_numbers();
  if (kept == form::numbers) {
    wide.take_converted(part.narrow, [&](std::uint32_t code) { return entries[code]; });
    wide.take_converted(part.wide, [&](plain_number entry) {
      return is_text(entry) ? entries[text_code(entry)] : entry;
    });
  } else if (kept == form::texts) {
    std::vector<std::uint32_t> codes{unknown_key};
    for (std::size_t code = 1; code < entries.size(); ++code)
      codes.push_back(text_code(entries[code]));
    narrow.take_converted(part.narrow, [&](std::uint32_t code) { return codes[code]; });
  } else {
    narrow.take_converted(part.narrow, [](std::uint32_t key) { return key; });
  }
}

void column_cells::add(const csv_block& rows, std::size_t cell, const unknown_texts& unknowns) {
  for (std::size_t row = 0; row < rows.rows(); ++row) {
    row = add_regular(rows, cell, row, unknowns);
    if (row == rows.rows()) return;
    if (unknowns.is_unknown(rows.row(row), cell)) {
      add_unknown();
    } else {
      add_text(rows.text(row, cell));
    }
  }
}

// Adds the cells from `row` on, until one may be unknown or change the form. Returns its row.
std::size_t column_cells::add_regular(const csv_block& rows, std::size_t cell, std::size_t row,
                                      const unknown_texts& unknowns) {
  // Within this loop the form and the room stay as they are, and so in registers.
  const auto add_while = [&](auto& entries, auto set_entry) {
    const std::size_t count = rows.rows();
    while (row < count) {
      const auto room = entries.next_room();
      const std::size_t end = std::min(count, row + room.count);
      auto* next = room.first;
      for (; row < end; ++row, ++next) {
        const cell_text text = rows.text(row, cell);
        if (unknowns.may_be_unknown(text.begin) || !set_entry(*next, text)) break;
      }
      entries.add_written(static_cast<std::size_t>(next - room.first));
      if (row < end) break;
    }
    return row;
  };
  if (kept == form::texts) {
    return add_while(narrow, [&](std::uint32_t& code, cell_text text) {
      code = dictionary.find(text);
      return code != 0;
    });
  }
  if (kept == form::numbers) {
    return add_while(wide, [&](plain_number& number, cell_text text) {
      number = read_plain_number(text);
      return fractions && number != no_plain_number;
    });
  }
  return add_while(narrow, [](std::uint32_t& key, cell_text text) {
    int value = 0;
    const bool is_integer = read_plain_integer(text, value);
    key = key_of(value);
    return is_integer;
  });
}

void column_cells::add_unknown() {
  ++unknown;
  if (kept == form::numbers) {
    wide.push_back(no_plain_number);
  } else {
    narrow.push_back(unknown_key);
  }
}

void column_cells::add_text(cell_text text) {
  if (kept == form::texts) return narrow.push_back(dictionary.code_of(text));
  const plain_number number = number_to_keep(text);
  if (number != no_plain_number) return add_number(number);
  if (kept == form::integers && narrow.size() == unknown) {
    kept = form::texts;  // no number so far, so there may be none at all
    return narrow.push_back(dictionary.code_of(text));
  }
  keep_as_numbers();
  wide.push_back(text_entry(dictionary.code_of(text)));
}

void column_cells::add_number(plain_number number) {
  if (kept == form::texts) return narrow.push_back(dictionary.code_of(text_of(number)));
  const bool is_integer = is_plain_integer(number);
  if (kept == form::integers && is_integer) return narrow.push_back(key_of_integer(number));
  keep_as_numbers();
  fractions = fractions || !is_integer;
  wide.push_back(number);
}

plain_number column_cells::number_to_keep(cell_text text) const {
  const plain_number number = keepable == plain::none ? no_plain_number : read_plain_number(text);
  return keepable == plain::integers && !is_plain_integer(number) ? no_plain_number : number;
}

cell_counts column_cells::counts() {
  cell_counts counts{narrow.size() + wide.size() - unknown, unknown, {}};
  if (dictionary.size() == 0) return counts;
  counts.texts.assign(dictionary.size() + 1ULL, 0);
  if (kept == form::texts) {
    narrow.for_each_block([&](const std::uint32_t* codes, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) ++counts.texts[codes[i]];
    });
  }
  wide.for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (is_text(entries[i])) ++counts.texts[text_code(entries[i])];
    }
  });
  return counts;
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

void column_cells::replace_texts(const std::function<std::string(const char* text)>& replacement) {
  text_dictionary replaced;
  std::vector<unsigned int> codes{0};
  for (unsigned int code = 1; code <= dictionary.size(); ++code)
    codes.push_back(replaced.code_of(replacement(dictionary.text(code))));
  dictionary = std::move(replaced);
  if (kept == form::texts) recode_texts(codes);
  wide.for_each_block([&](plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (is_text(entries[i])) entries[i] = text_entry(codes[text_code(entries[i])]);
    }
  });
}

void column_cells::recode_texts(const std::vector<unsigned int>& codes) {
  narrow.for_each_block([&](std::uint32_t* keys, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) keys[i] = codes[keys[i]];
  });
}

}  // namespace arbor::tree
