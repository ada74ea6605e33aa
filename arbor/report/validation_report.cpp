#include "arbor/report/validation_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/evaluation_report.h"
#include "arbor/report/text_table.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

// A line for each pair of options, the most frequent first.
std::string choices_as_text(const validation& result) {
  using choice = std::pair<std::string, std::string>;
  std::map<choice, std::size_t> folds;
  for (const fold_result& part : result.folds) {
    const std::string confidence = part.confidence ? shortest_text(*part.confidence) : "-";
    ++folds[{shortest_text(part.min_weight), confidence}];
  }
  std::vector<std::pair<choice, std::size_t>> choices(folds.begin(), folds.end());
  std::stable_sort(choices.begin(), choices.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  std::vector<std::vector<std::string>> lines{{"chosen minimum weight", "confidence", "folds"}};
  for (const auto& [chosen, count] : choices)
    lines.push_back({chosen.first, chosen.second, std::to_string(count)});
  return '\n' + aligned(lines, "rrr") + '\n';
}

std::string importance_as_text(const table& rows, const validation& result) {
  std::vector<std::vector<std::string>> lines{
      {"permuted attribute", "trees", "log-loss", "accuracy"}};
  std::size_t untested = 0;
  for (const std::size_t i : columns_by_importance(rows, result)) {
    const auto& [trees, loss] = result.attributes[i];
    if (trees == 0) {
      ++untested;
      continue;
    }
    lines.push_back({printable(rows.columns[i]->get_name()), std::to_string(trees),
                     fmt::format("{:+.3f} bits", loss.log_loss),
                     fmt::format("{:+.2f}%", 0 - 100 * loss.accuracy)});
  }
  std::string report = '\n' + aligned(lines, "lrrr");
  if (untested > 0) report += "and " + counted(untested, "attribute") + " that no tree tests\n";
  return report;
}

std::string short_number(double value) {
  return shortest_text(static_cast<float>(value));
}

}  // namespace

std::string validation_as_text(const table& rows, const validation_options& options,
                               const validation& result, double seconds) {
  const std::string repeats =
      options.repeats == 1 ? "" : fmt::format("mean of {} repeats of ", options.repeats);
  return fmt::format(
             "{}{} folds, validated in {:.3f} s: trees of {:.1f} leaves and depth {:.1f} on "
             "average\n",
             repeats, options.folds, seconds, mean_leaves(result), mean_depth(result)) +
         (options.tune ? choices_as_text(result) : "") +
         evaluation_as_text("cross-validated", rows.class_column(), result.quality) +
         (options.importance ? importance_as_text(rows, result) : "");
}

std::string validation_as_csv(const validation& result) {
  std::string report =
      "repeat,fold,cases,accuracy,log_loss,brier,leaves,depth,min_weight,confidence\n";
  for (const fold_result& part : result.folds) {
    const evaluation& quality = part.quality;
    report += fmt::format("{},{},{},{},{},{},{},{},{},{}\n", part.repeat, part.fold,
                          short_number(quality.matrix().total()), short_number(quality.accuracy()),
                          short_number(quality.log_loss()), short_number(quality.brier_score()),
                          part.size.leaves, part.size.depth, shortest_text(part.min_weight),
                          part.confidence ? shortest_text(*part.confidence) : "");
  }
  return report;
}

std::vector<std::size_t> columns_by_importance(const table& rows, const validation& result) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < rows.columns.size(); ++i) {
    if (is_attribute(*rows.columns[i])) order.push_back(i);
  }
  const auto rank = [&](std::size_t i) {
    const auto& [trees, loss] = result.attributes[i];
    return std::tuple(loss.log_loss, loss.accuracy, trees);
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return rank(a) > rank(b); });
  return order;
}

}  // namespace arbor::tree
