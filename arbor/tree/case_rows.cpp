#include "arbor/tree/case_rows.h"

#include "arbor/model/extract_rows.h"

namespace arbor::tree {

case_rows::case_rows(const table& whole) : classes(&whole.class_column()), weights(whole.cases) {
  for (const auto& column : whole.columns) all_columns.push_back(column.get());
}

case_rows::case_rows(const case_rows& from, const impls::w_sequence& cases)
    : extracted_weights(cases.size()), weights(extracted_weights) {
  for (const impls::column* column : from.all_columns) {
    const bool is_class = column == from.classes;
    if (!is_class && !column->is_discrete() && !column->is_continuous()) {
      all_columns.push_back(column);  // nobody reads its rows
      continue;
    }
    extracts.push_back(impls::extract_rows(*column, cases));
    impls::column* const extract = extracts.back().get();
    if (is_class) classes = extract;
    all_columns.push_back(extract);
  }
  for (std::size_t i = 0; i < cases.size(); ++i) {
    extracted_weights[i] = {static_cast<unsigned int>(i), from.weight(cases[i].first)};
  }
}

}  // namespace arbor::tree
