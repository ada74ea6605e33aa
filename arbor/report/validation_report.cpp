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

void write_permutations(std::ostream& out, const table& rows, const validation& result,
                        std::size_t width) {
  std::vector<std::size_t> tested = columns_by_importance(rows, result);
  const std::size_t attributes = tested.size();
  const auto is_untested = [&](std::size_t i) { return result.attributes[i].trees == 0; };
  tested.erase(std::remove_if(tested.begin(), tested.end(), is_untested), tested.end());
  const auto row = [&](std::size_t r) -> std::vector<std::string> {
    if (r == 0) return {"permuted attribute", "trees", "log-loss", "accuracy"};
    const std::size_t i = tested[r - 1];
    const auto& [trees, loss] = result.attributes[i];
    return {shown(rows.columns[i]->get_name(), width), std::to_string(trees),
            fmt::format("{:+.3f} bits", loss.log_loss),
            fmt::format("{:+.2f}%", 0 - 100 * loss.accuracy)};
  };
  out << '\n';
  write_aligned(out, "lrrr", 1 + tested.size(), row);
  if (tested.size() < attributes) {
    out << fmt::format("and {} that no tree tests\n",
                       counted(attributes - tested.size(), "attribute"));
  }
}

std::string short_number(double value) {
  return shortest_text(static_cast<float>(value));
}

}  // namespace

void write_validation_text(std::ostream& out, const table& rows, const validation_options& options,
                           const validation& result, double seconds, std::size_t width) {
  const std::string repeats =
      options.repeats == 1 ? "" : fmt::format("mean of {} repeats of ", options.repeats);
  out << fmt::format(
      "{}{} folds, validated in {:.3f} s: trees of {:.1f} leaves and depth {:.1f} on average\n",
      repeats, options.folds, seconds, mean_leaves(result), mean_depth(result));
  if (options.tune) out << choices_as_text(result);
  out << evaluation_as_text("cross-validated", rows.class_column(), result.quality);
  if (options.importance) write_permutations(out, rows, result, width);
}

void write_validation_csv(std::ostream& out, const validation& result) {
  out << "repeat,fold,cases,accuracy,log_loss,brier,leaves,depth,min_weight,confidence\n";
  for (const fold_result& part : result.folds) {
    const evaluation& quality = part.quality;
    out << fmt::format("{},{},{},{},{},{},{},{},{},{}\n", part.repeat, part.fold,
                       short_number(quality.matrix().total()), short_number(quality.accuracy()),
                       short_number(quality.log_loss()), short_number(quality.brier_score()),
                       part.size.leaves, part.size.depth, shortest_text(part.min_weight),
                       part.confidence ? shortest_text(*part.confidence) : "");
  }
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
