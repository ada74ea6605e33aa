#include "arbor/table/table_checks.h"

#include <fmt/format.h>

#include <cmath>
#include <numeric>

#include "arbor/csv/table_error.h"
#include "arbor/table/text_remarks.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

std::vector<table_remark> remarks_on_columns(
    const std::vector<std::unique_ptr<column_loader>>& columns,
    const std::vector<std::uint64_t>& rounded_cells,
    const std::vector<std::string>& unknown_texts) {
  std::vector<near_numbers> texts;
  std::vector<std::string> rounded;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i]->add_near_numbers(texts);
    if (rounded_cells[i] > 0) rounded.push_back(columns[i]->name());
  }
  std::vector<table_remark> remarks = remarks_on_texts(texts, unknown_texts);
  if (!rounded.empty()) {
    remarks.push_back(remark_on_rounded(
        rounded, std::accumulate(rounded_cells.begin(), rounded_cells.end(), std::size_t{0})));
  }
  return remarks;
}

// Gain and split information are made of float sums of w log2 w. For weights that add up to S no
// such sum exceeds S log2 S, which for 2^120 is less than half of the greatest float.
void check_total_weight(float total, const std::string& weights) {
  constexpr float most_total_weight = 0x1p120F;
  if (total <= most_total_weight) return;
  throw table_error(fmt::format(
      "{} add up to {}, and above {} the sums that make up a gain do not fit a float; "
      "divide all weights by the same number",
      weights, std::isfinite(total) ? shortest_text(total) : "more than a float can hold",
      shortest_text(most_total_weight)));
}

}  // namespace arbor::tree
