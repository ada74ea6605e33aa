#include "arbor/report/evaluation_report.h"

#include <fmt/format.h>

#include <set>
#include <utility>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/report/node_text.h"
#include "arbor/report/text_table.h"

namespace arbor::tree {

std::string error_line(const std::string& which_cases, const confusion_matrix& matrix) {
  const double total = matrix.total();
  return fmt::format("errors on the {} {} cases: {} ({:.1f}%)", weight_text(total), which_cases,
                     weight_text(matrix.errors()), total > 0 ? 100 * matrix.errors() / total : 0);
}

std::string matrix_as_text(const decision_tree& tree, const confusion_matrix& matrix) {
  constexpr std::size_t most_classes = 20;
  std::set<std::size_t> classes;
  for (const auto& [pair, weight] : matrix.pairs()) classes.insert({pair.first, pair.second});
  if (classes.size() > most_classes)
    return fmt::format("({} classes: too many for a matrix)\n", classes.size());
  std::vector<std::vector<std::string>> rows{{"actual \\ predicted"}};
  for (const std::size_t c : classes) rows.front().push_back(printable(class_text(tree, c)));
  for (const std::size_t actual : classes) {
    std::vector<std::string> row{printable(class_text(tree, actual))};
    for (const std::size_t predicted : classes)
      row.push_back(weight_text(matrix.at(actual, predicted)));
    rows.push_back(std::move(row));
  }
  return aligned(rows, 'l' + std::string(classes.size(), 'r'));
}

}  // namespace arbor::tree
