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
  for (const impls::column* column : from.all_columns)
    add_copy(*column, from.is_read(*column) ? impls::extract_rows(*column, cases) : nullptr);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    copied_weights[i] = {static_cast<unsigned int>(i), from.weight(cases[i].first)};
  }
}

case_rows::case_rows(const table& whole, std::vector<std::unique_ptr<impls::column>> read,
                     impls::w_sequence row_weights)
    : classes(&whole.class_column()),
      copied_weights(std::move(row_weights)),
      weights(copied_weights) {
  auto next = read.begin();
  for (const auto& column : whole.columns)
    add_copy(*column, is_read(*column) ? std::move(*next++) : nullptr);
}

void case_rows::add_copy(const impls::column& of, std::unique_ptr<impls::column> copy) {
  all_columns.push_back(copy == nullptr ? &of : copy.get());
  if (copy == nullptr) return;
  if (&of == classes) classes = copy.get();
  copies.push_back(std::move(copy));
}

bool case_rows::is_read(const impls::column& column) const {
  return &column == classes || is_testable(column);
}

node_cases root_cases(const table& training, const impls::w_sequence& cases) {
  // The caller keeps the cases of the root.
  node_cases root{
      std::make_shared<const case_rows>(training), {std::shared_ptr<void>(), &cases}, {}, 0};
  // This question also puts a domain in order, which several threads could not do at once.
  for (const auto& attribute : training.columns) root.ranges.push_back(attribute->get_range());
  return root;
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
