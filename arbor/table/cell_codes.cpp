#include "arbor/table/cell_codes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "arbor/model/o_set_typed.h"
#include "arbor/table/domain_text.h"
#include "arbor/table/float_merges.h"
#include "arbor/table/key_ranks.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"

namespace arbor::tree {

namespace {

using strata::data_types::datatype;

double number_of(const char* text) {
  double value = 0;
  strata::util::read_number(text, value);
  return value;
}

template <class Value, class Read>
void insert_values(const std::vector<std::uint32_t>& keys, Read value_of_key,
                   impls::o_set& domain) {
  std::vector<datatype<Value>> values;
  values.reserve(keys.size());
  for (const std::uint32_t key : keys) values.emplace_back(value_of_key(key));
  static_cast<impls::o_set_typed<datatype<Value>>&>(domain).insert_values(std::move(values));
}

// Replaces the codes of texts in the dictionary.
void recode(column_cells& cells, const std::vector<unsigned int>& codes) {
  cells.keys().for_each_block([&](std::uint32_t* keys, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) keys[i] = codes[keys[i]];
  });
}

// Sorts like the text: its first eight characters behind those that all texts share, as a number
// whose digits they are, tell most texts apart.
struct sortable_text {
  std::uint64_t beginning = 0;
  std::string_view text;
  unsigned int code;

  sortable_text(std::string_view view, std::size_t shared, unsigned int text_code)
      : text(view), code(text_code) {
    for (std::size_t i = shared; i < shared + 8; ++i) {
      beginning = beginning << 8U | (i < view.size() ? static_cast<unsigned char>(view[i]) : 0U);
    }
  }
  bool operator<(const sortable_text& other) const {
    return beginning != other.beginning ? beginning < other.beginning : text < other.text;
  }
};

// With how many characters all the texts begin alike.
std::size_t shared_beginning(const text_dictionary& texts) {
  std::string_view shared = texts.size() == 0 ? "" : texts.view(1);
  for (unsigned int code = 2; code <= texts.size(); ++code) {
    const std::string_view text = texts.view(code);
    shared = shared.substr(0, text.size());
    const auto alike =
        std::mismatch(shared.begin(), shared.end(), text.begin()).first - shared.begin();
    shared = shared.substr(0, static_cast<std::size_t>(alike));
  }
  return shared.size();
}

// Goes from the form of numbers to keys. `text_keys` are by code of the dictionary.
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

template <class KeyOfText>
std::vector<std::uint32_t> keys_of_texts(const text_dictionary& texts, KeyOfText key_of_text) {
  std::vector<std::uint32_t> keys{unknown_key};
  for (unsigned int code = 1; code <= texts.size(); ++code)
    keys.push_back(key_of_text(texts.text(code)));
  return keys;
}

// Zero and its negative are one value: the one in the first row that has either.
void join_zeros(cell_blocks<std::uint32_t>& keys) {
  const auto is_zero = [](std::uint32_t k) { return k == zero_key || k == negative_zero_key; };
  std::uint32_t first = unknown_key;
  keys.for_each_block([&](std::uint32_t* k, std::size_t count) {
    if (first == unknown_key) {
      const std::uint32_t* const found = std::find_if(k, k + count, is_zero);
      if (found != k + count) first = *found;
    }
    std::replace_if(k, k + count, is_zero, first);
  });
}

bool may_merge(const text_dictionary& texts) {
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    if (may_merge_as_float(texts.text(code), number_of(texts.text(code)))) return true;
  }
  return false;
}

bool may_merge(column_cells& cells) {
  bool may = may_merge(cells.texts());
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    const auto may_one = [](plain_number n) {
      return !column_cells::is_unknown(n) && !column_cells::is_text(n) && may_merge_as_float(n);
    };
    may = may || std::any_of(entries, entries + count, may_one);
  });
  return may;
}

std::vector<std::uint64_t> identities_of_texts(const text_dictionary& texts) {
  std::vector<std::uint64_t> identities{0};
  for (unsigned int code = 1; code <= texts.size(); ++code)
    identities.push_back(number_identity(texts.text(code)));
  return identities;
}

std::size_t count_merges(column_cells& cells, std::size_t distinct) {
  float_merges merges(distinct);
  const std::vector<std::uint64_t> of_texts = identities_of_texts(cells.texts());
  cells.numbers().for_each_block_with(cells.keys(), [&](const plain_number* entries,
                                                        const std::uint32_t* codes,
                                                        std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const plain_number entry = entries[i];
      if (column_cells::is_unknown(entry)) continue;
      merges.add(codes[i], column_cells::is_text(entry) ? of_texts[column_cells::text_code(entry)]
                                                        : number_identity(entry));
    }
  });
  return merges.count();
}

}  // namespace

void code_texts(column_cells& cells, impls::o_set& domain) {
  cells.keep_as_texts();
  std::vector<sortable_text> texts;
  texts.reserve(cells.texts().size());
  const std::size_t shared = shared_beginning(cells.texts());
  for (unsigned int code = 1; code <= cells.texts().size(); ++code) {
    texts.emplace_back(cells.texts().view(code), shared, code);
  }
  std::sort(texts.begin(), texts.end());
  std::vector<unsigned int> codes(texts.size() + 1, 0);
  std::vector<datatype<std::string>> values;
  values.reserve(texts.size());
  for (const sortable_text& t : texts) {
    values.emplace_back(to_domain_text(t.text));
    codes[t.code] = static_cast<unsigned int>(values.size());
  }
  static_cast<impls::o_set_typed<datatype<std::string>>&>(domain).insert_values(std::move(values));
  recode(cells, codes);
}

void code_integers(column_cells& cells, impls::o_set& domain) {
  const std::vector<std::uint32_t> text_keys = keys_of_texts(cells.texts(), [](const char* text) {
    int value = 0;
    strata::util::string_util::str2int(text, value);
    return key_of(value);
  });
  make_keys(cells, text_keys,
            [](plain_number number) { return key_of(static_cast<int>(number / 32)); });
  cells.numbers() = {};
  insert_values<int>(rank_keys(cells.keys()), integer_of, domain);
}

std::size_t code_floats(column_cells& cells, impls::o_set& domain) {
  cells.keep_as_numbers();
  const std::vector<std::uint32_t> text_keys = keys_of_texts(
      cells.texts(), [](const char* text) { return key_of(static_cast<float>(number_of(text))); });
  make_keys(cells, text_keys,
            [](plain_number number) { return key_of(static_cast<float>(value_of(number))); });
  if (std::find(text_keys.begin(), text_keys.end(), negative_zero_key) != text_keys.end())
    join_zeros(cells.keys());
  const std::vector<std::uint32_t> distinct = rank_keys(cells.keys());
  const std::size_t lost = may_merge(cells) ? count_merges(cells, distinct.size()) : 0;
  cells.numbers() = {};
  insert_values<float>(distinct, float_of, domain);
  return lost;
}

void insert_texts(column_cells& cells, impls::o_set& domain) {
  cells.keep_as_texts();
  for (unsigned int code = 1; code <= cells.texts().size(); ++code)
    domain.insert(cells.texts().text(code));
}

void look_up_codes(column_cells& cells, impls::o_set& domain) {
  std::vector<unsigned int> codes(cells.texts().size() + 1ULL, 0);
  for (unsigned int code = 1; code < codes.size(); ++code)
    domain.get_order(cells.texts().text(code), codes[code]);
  recode(cells, codes);
}

std::size_t lost_as_float(const column_cells& cells, impls::o_set& domain) {
  if (!may_merge(cells.texts())) return 0;
  float_merges merges(domain.size_of_known());
  const std::vector<std::uint64_t> identities = identities_of_texts(cells.texts());
  for (unsigned int text = 1; text < identities.size(); ++text) {
    unsigned int code = 0;
    if (domain.get_order(cells.texts().text(text), code)) merges.add(code, identities[text]);
  }
  return merges.count();
}

}  // namespace arbor::tree
