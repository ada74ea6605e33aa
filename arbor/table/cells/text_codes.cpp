#include "arbor/table/cells/text_codes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "arbor/model/o_set_typed.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

using text_value = strata::data_types::datatype<std::string>;

// Sorts like the text. Most texts already differ in the first eight characters after those that all
// texts share; as one number, highest byte first, these are fast to compare.
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

// How many characters all the texts have in common at their beginning.
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

std::vector<sortable_text> sorted_texts(const text_dictionary& texts) {
  const std::size_t shared = shared_beginning(texts);
  std::vector<sortable_text> sorted;
  sorted.reserve(texts.size());
  for (unsigned int code = 1; code <= texts.size(); ++code)
    sorted.emplace_back(texts.view(code), shared, code);
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

}  // namespace

void code_texts(column_cells& cells, impls::o_set& domain) {
  cells.keep_as_texts();
  std::vector<unsigned int> codes(cells.texts().size() + 1ULL, 0);
  std::vector<text_value> values;
  values.reserve(cells.texts().size());
  for (const sortable_text& sorted : sorted_texts(cells.texts())) {
    values.emplace_back(to_domain_text(sorted.text));
    codes[sorted.code] = static_cast<unsigned int>(values.size());
  }
  static_cast<impls::o_set_typed<text_value>&>(domain).insert_values(std::move(values));
  cells.recode_texts(codes);
}

}  // namespace arbor::tree
