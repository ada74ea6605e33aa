#include "arbor/tree/growing/node_cases.h"

#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/extract_rows.h"

namespace arbor::tree {

bool is_testable(const impls::column& column) {
  return column.is_discrete() || column.is_continuous();
}

case_rows::case_rows(const table& whole) : classes(&whole.class_column()), weights(whole.cases) {
  for (const auto& column : whole.columns) {
    all_columns.push_back(column.get());
    if (is_read(*column) && !impls::is_library_column(*column)) copyable = false;
  }
}

case_rows::case_rows(const case_rows& from, const impls::w_sequence& cases)
    : classes(from.classes), copied_weights(cases.size()), weights(copied_weights) {
  for (const impls::column* column : from.all_columns) {
    if (!from.is_read(*column)) {
      all_columns.push_back(column);
      continue;
    }
    copies.push_back(impls::extract_rows(*column, cases));
    if (column == from.classes) classes = copies.back().get();
    all_columns.push_back(copies.back().get());
  }
  for (std::size_t i = 0; i < cases.size(); ++i) {
    copied_weights[i] = {static_cast<unsigned int>(i), from.weight(cases[i].first)};
  }
}

bool case_rows::is_read(const impls::column& column) const {
  return &column == classes || is_testable(column);
}

void gather_rows(node_cases& node) {
  constexpr std::size_t many_rows = 1U << 15U;  // a few columns of so many fill a core's cache
  constexpr std::size_t scattered = 4;          // rows for each case
  constexpr std::size_t worth_copying = 512;    // cases
  const impls::w_sequence& cases = *node.cases;
  if (node.rows->size() < many_rows || cases.size() < worth_copying) return;
  if (node.rows->size() / cases.size() < scattered || !node.rows->can_be_copied()) return;
  auto renumbered = std::make_shared<impls::w_sequence>(cases);
  for (std::size_t i = 0; i < cases.size(); ++i)
    (*renumbered)[i].first = static_cast<unsigned int>(i);
  node.rows = std::make_shared<const case_rows>(*node.rows, cases);
  node.cases = std::move(renumbered);
}

}  // namespace arbor::tree
