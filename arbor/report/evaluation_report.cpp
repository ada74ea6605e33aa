#include "arbor/report/evaluation_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/confusion_report.h"
#include "arbor/report/node_text.h"
#include "arbor/report/text_table.h"

namespace arbor::tree {

namespace {

// Keeps the classes with the heaviest cases, heaviest first, if there are more than `most`.
void keep_heaviest_classes(std::vector<class_quality>& classes, std::size_t most) {
  if (classes.size() <= most) return;
  const auto heavier = [](const class_quality& a, const class_quality& b) {
    return a.actual > b.actual;
  };
  std::stable_sort(classes.begin(), classes.end(), heavier);
  classes.resize(most);
}

std::vector<std::string> class_line(const impls::column& classes, const class_quality& quality) {
  constexpr std::size_t name_width = 50;
  const auto share = [](double whole, double value) {
    return whole > 0 ? fmt::format("{:.3f}", value) : "-";
  };
  return {shown(class_text(classes, quality.entry), name_width), weight_text(quality.actual),
          share(quality.predicted, quality.precision()), share(quality.actual, quality.recall()),
          fmt::format("{:.3f}", quality.f1())};
}

std::string classes_as_text(const impls::column& classes, const confusion_matrix& matrix) {
  constexpr std::size_t most_classes = 20;
  std::vector<class_quality> shown = quality_by_class(matrix);
  const std::size_t occurring = shown.size();
  keep_heaviest_classes(shown, most_classes);
  std::vector<std::vector<std::string>> rows{{"class", "cases", "precision", "recall", "F1"}};
  for (const class_quality& quality : shown) rows.push_back(class_line(classes, quality));
  std::string report = aligned(rows, "lrrrr");
  if (occurring > most_classes) {
    report +=
        fmt::format("and {}\n", counted(occurring - most_classes, "other class", "other classes"));
  }
  return report;
}

}  // namespace

std::string error_line(const std::string& which_cases, const confusion_matrix& matrix) {
  const double total = matrix.total();
  return fmt::format("errors on the {} {} cases: {} ({:.1f}%)", weight_text(total), which_cases,
                     weight_text(matrix.errors()), total > 0 ? 100 * matrix.errors() / total : 0);
}

std::string evaluation_as_text(const std::string& which_cases, const impls::column& classes,
                               const evaluation& quality) {
  return error_line(which_cases, quality.matrix()) +
         fmt::format(
             "\naccuracy {:.2f}% (standard error {:.2f}%), log-loss {:.3f} bits, "
             "Brier score {:.3f}\nerror of always predicting the commonest class: {:.2f}%\n\n",
             100 * quality.accuracy(), 100 * quality.accuracy_error(), quality.log_loss(),
             quality.brier_score(), 100 * quality.commonest_class_error()) +
         classes_as_text(classes, quality.matrix()) + '\n' +
         confusions_as_text(classes, quality.matrix());
}

}  // namespace arbor::tree
