#include "arbor/report/confusion_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/node_text.h"
#include "arbor/report/text_table.h"

namespace arbor::tree {

namespace {

std::string matrix_of(const confusion_matrix& matrix, const std::set<std::size_t>& classes,
                      const std::vector<std::string>& headings,
                      const std::vector<std::string>& names) {
  std::vector<std::vector<std::string>> rows{{"actual \\ predicted"}};
  rows.front().insert(rows.front().end(), headings.begin(), headings.end());
  for (const std::size_t actual : classes) {
    std::vector<std::string> row{names[rows.size() - 1]};
    for (const std::size_t predicted : classes)
      row.push_back(weight_text(matrix.at(actual, predicted)));
    rows.push_back(std::move(row));
  }
  return aligned(rows, 'l' + std::string(classes.size(), 'r'));
}

std::string readable_matrix(const impls::column& classes, const confusion_matrix& matrix,
                            const std::set<std::size_t>& occurring) {
  constexpr std::size_t line_width = 100;
  constexpr std::size_t name_width = 40;
  std::vector<std::string> names;
  names.reserve(occurring.size());
  for (const std::size_t c : occurring) names.push_back(shown(class_text(classes, c), line_width));
  std::string report = matrix_of(matrix, occurring, names, names);
  if (display_width(report.substr(0, report.find('\n'))) <= line_width) return report;
  std::vector<std::string> letters;
  for (std::string& name : names) {
    letters.emplace_back(1, static_cast<char>('a' + letters.size()));
    name = letters.back() + " = " + shown(name, name_width);
  }
  return matrix_of(matrix, occurring, letters, names);
}

using pair_weight = std::pair<std::pair<std::size_t, std::size_t>, double>;

// Without the pairs of a class and itself, heaviest first.
std::vector<pair_weight> confusions_of(const confusion_matrix& matrix) {
  std::vector<pair_weight> confusions;
  for (const pair_weight entry : matrix.pairs()) {
    if (entry.first.first != entry.first.second) confusions.push_back(entry);
  }
  std::stable_sort(confusions.begin(), confusions.end(),
                   [](const pair_weight& a, const pair_weight& b) { return a.second > b.second; });
  return confusions;
}

std::string heaviest_confusions(const impls::column& classes, const confusion_matrix& matrix) {
  constexpr std::size_t most_pairs = 20;
  constexpr std::size_t name_width = 40;
  const std::vector<pair_weight> confusions = confusions_of(matrix);
  if (confusions.empty()) return "no class was predicted for another\n";
  const auto name = [&](std::size_t entry) {
    return shown(class_text(classes, entry), name_width);
  };
  std::vector<std::vector<std::string>> rows{{"actual -> predicted", "cases"}};
  for (std::size_t i = 0; i < std::min(most_pairs, confusions.size()); ++i) {
    const auto& [pair, weight] = confusions[i];
    rows.push_back({name(pair.first) + " -> " + name(pair.second), weight_text(weight)});
  }
  std::string report = aligned(rows, "lr");
  if (confusions.size() > most_pairs)
    report += fmt::format("and {}\n", counted(confusions.size() - most_pairs, "other pair"));
  return report;
}

}  // namespace

std::string confusions_as_text(const impls::column& classes, const confusion_matrix& matrix) {
  constexpr std::size_t most_classes = 20;
  std::set<std::size_t> occurring;
  for (const auto& [pair, weight] : matrix.pairs()) occurring.insert({pair.first, pair.second});
  return occurring.size() > most_classes ? heaviest_confusions(classes, matrix)
                                         : readable_matrix(classes, matrix, occurring);
}

}  // namespace arbor::tree
