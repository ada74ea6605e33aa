#include "arbor/table/cells/number_codes.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <type_traits>
#include <utility>

#include "arbor/model/o_set_typed.h"
#include "arbor/table/cells/decimal_codes.h"
#include "arbor/table/cells/float_merges.h"
#include "arbor/table/cells/key_ranks.h"

namespace arbor::tree {

namespace {

using strata::data_types::datatype;

template <class Number>
void insert_numbers(std::vector<datatype<Number>> numbers, impls::o_set& domain) {
  static_cast<impls::o_set_typed<datatype<Number>>&>(domain).insert_values(std::move(numbers));
}

// The entries of the dictionary's texts, from 0 on, in ascending order of their numbers; of equal
// ones the first one added comes first.
template <class Number>
std::vector<unsigned int> entries_by_number(const std::vector<double>& text_numbers) {
  std::vector<unsigned int> entries(text_numbers.size());
  std::iota(entries.begin(), entries.end(), 0U);
  std::stable_sort(entries.begin(), entries.end(), [&](unsigned int a, unsigned int b) {
    return static_cast<Number>(text_numbers[a]) < static_cast<Number>(text_numbers[b]);
  });
  return entries;
}

// Of cells that are kept as texts.
template <class Number>
std::size_t code_number_texts(column_cells& cells, const std::vector<double>& text_numbers,
                              impls::o_set& domain) {
  std::vector<unsigned int> codes(text_numbers.size() + 1, 0);
  std::vector<datatype<Number>> distinct;
  for (const unsigned int entry : entries_by_number<Number>(text_numbers)) {
    const auto number = static_cast<Number>(text_numbers[entry]);
    if (distinct.empty() || distinct.back().value < number) distinct.emplace_back(number);
    codes[entry + 1] = static_cast<unsigned int>(distinct.size());
  }
  insert_numbers<Number>(std::move(distinct), domain);
  cells.recode_texts(codes);
  return std::is_same_v<Number, float> ? lost_texts(cells.texts(), text_numbers, codes) : 0;
}

// Goes from cells that are kept as numbers to keys. `text_keys` are by code of the dictionary.
template <class KeyOfNumber>
void make_keys(column_cells& cells, const std::vector<std::uint32_t>& text_keys,
               KeyOfNumber key_of_number) {
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const plain_number entry = entries[i];
      cells.keys().push_back(column_cells::is_unknown(entry) ? unknown_key
                             : column_cells::is_text(entry)
                                 ? text_keys[column_cells::text_code(entry)]
                                 : key_of_number(entry));
    }
  });
}

template <class Number>
std::vector<std::uint32_t> keys_of_texts(const std::vector<double>& text_numbers) {
  std::vector<std::uint32_t> keys{unknown_key};
  for (const double number : text_numbers) keys.push_back(key_of(static_cast<Number>(number)));
  return keys;
}

template <class Number, class NumberOfKey>
std::vector<datatype<Number>> numbers_of(const std::vector<std::uint32_t>& keys,
                                         NumberOfKey number_of_key) {
  std::vector<datatype<Number>> numbers;
  numbers.reserve(keys.size());
  for (const std::uint32_t k : keys) numbers.emplace_back(number_of_key(k));
  return numbers;
}

void code_integers(column_cells& cells, const std::vector<double>& text_numbers,
                   impls::o_set& domain) {
  make_keys(cells, keys_of_texts<int>(text_numbers),
            [](plain_number number) { return key_of(static_cast<int>(number / 32)); });
  cells.numbers() = {};
  insert_numbers<int>(numbers_of<int>(rank_keys(cells.keys()), integer_of), domain);
}

// Zero and its negative are equal: all become the one that comes first in the order of the rows.
void join_zeros(cell_blocks<std::uint32_t>& keys) {
  std::uint32_t first_zero = unknown_key;
  keys.for_each_block([&](std::uint32_t* k, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (k[i] != zero_key && k[i] != negative_zero_key) continue;
      if (first_zero == unknown_key) first_zero = k[i];
      k[i] = first_zero;
    }
  });
}

std::size_t code_floats(column_cells& cells, const std::vector<double>& text_numbers,
                        impls::o_set& domain) {
  cells.keep_as_numbers();
  const std::vector<std::uint32_t> text_keys = keys_of_texts<float>(text_numbers);
  make_keys(cells, text_keys,
            [](plain_number number) { return key_of(static_cast<float>(value_of(number))); });
  // No plain number is a negative zero.
  if (std::find(text_keys.begin(), text_keys.end(), negative_zero_key) != text_keys.end())
    join_zeros(cells.keys());
  const std::vector<std::uint32_t> distinct = rank_keys(cells.keys());
  const std::size_t lost = lost_numbers(cells, text_numbers, distinct.size());
  cells.numbers() = {};
  insert_numbers<float>(numbers_of<float>(distinct, float_of), domain);
  return lost;
}

}  // namespace

std::size_t code_numbers(column_cells& cells, const std::vector<double>& text_numbers,
                         impls::o_set& domain) {
  const std::string data_type = domain.get_datatype();
  const bool are_texts = cells.kept_as() == column_cells::form::texts;
  if (data_type == "float") {
    return are_texts ? code_number_texts<float>(cells, text_numbers, domain)
                     : code_floats(cells, text_numbers, domain);
  }
  if (data_type == "double") return code_number_texts<double>(cells, text_numbers, domain);
  if (data_type == "uinteger") {
    const auto* const decimals = dynamic_cast<const decimal_domain*>(&domain);
    code_steps(cells, decimals == nullptr ? decimal_scale() : decimals->scale(), domain);
    return 0;
  }
  if (are_texts) return code_number_texts<int>(cells, text_numbers, domain);
  code_integers(cells, text_numbers, domain);
  return 0;
}

}  // namespace arbor::tree
