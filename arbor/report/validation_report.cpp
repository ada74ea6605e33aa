#include "arbor/report/validation_report.h"

#include <fmt/format.h>

#include <limits>
#include <optional>

#include "arbor/report/evaluation_report.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"
#include "arbor/report/rating_report.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

std::string short_number(double value) {
  return shortest_text(static_cast<float>(value));
}

void options_to_json(json_writer& json, const validation_options& options) {
  constexpr unsigned int no_limit = std::numeric_limits<unsigned int>::max();
  const grow_options& grow = options.grow;
  json.open('{').member("folds", options.folds).member("repeats", options.repeats);
  json.member("seed", options.seed).member("min_weight", grow.min_weight);
  json.member("max_depth",
              grow.max_depth == no_limit ? std::nullopt : std::optional(grow.max_depth));
  json.member("confidence", grow.prune ? std::optional(grow.confidence) : std::nullopt).close();
}

void figures_to_json(json_writer& json, const evaluation& quality) {
  json.member("cases", quality.matrix().total());
  json.member("accuracy", quality.accuracy());
  json.member("accuracy_error", quality.accuracy_error());
  json.member("log_loss", quality.log_loss());
  json.member("brier", quality.brier_score());
  json.member("commonest_class_error", quality.commonest_class_error());
}

void qualities_to_json(json_writer& json, const impls::column& classes,
                       const confusion_matrix& matrix) {
  const auto unless_empty = [](double whole, double share) {
    return whole > 0 ? std::optional(share) : std::nullopt;
  };
  json.open('[');
  for (const class_quality& quality : quality_by_class(matrix)) {
    json.open('{').member("class", class_text(classes, quality.entry));
    json.member("cases", quality.actual);
    json.member("predicted", quality.predicted);
    json.member("precision", unless_empty(quality.predicted, quality.precision()));
    json.member("recall", unless_empty(quality.actual, quality.recall()));
    json.member("f1", quality.f1()).close();
  }
  json.close();
}

void matrix_to_json(json_writer& json, const impls::column& classes,
                    const confusion_matrix& matrix) {
  json.open('[');
  for (const auto& [pair, weight] : matrix.pairs()) {
    json.open('{').member("actual", class_text(classes, pair.first));
    json.member("predicted", class_text(classes, pair.second));
    json.member("weight", weight).close();
  }
  json.close();
}

void fold_to_json(json_writer& json, const fold_result& part) {
  json.open('{').member("repeat", part.repeat).member("fold", part.fold);
  json.member("cases", part.quality.matrix().total());
  json.member("accuracy", part.quality.accuracy());
  json.member("log_loss", part.quality.log_loss());
  json.member("brier", part.quality.brier_score());
  json.member("leaves", part.size.leaves).member("depth", part.size.depth).close();
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
         evaluation_as_text("cross-validated", rows.class_column(), result.quality);
}

std::string validation_as_csv(const validation& result) {
  std::string report = "repeat,fold,cases,accuracy,log_loss,brier,leaves,depth\n";
  for (const fold_result& part : result.folds) {
    report +=
        fmt::format("{},{},{},{},{},{},{},{}\n", part.repeat, part.fold,
                    short_number(part.quality.matrix().total()),
                    short_number(part.quality.accuracy()), short_number(part.quality.log_loss()),
                    short_number(part.quality.brier_score()), part.size.leaves, part.size.depth);
  }
  return report;
}

std::string validation_as_json(const table& rows, const validation_options& options,
                               const validation& result, double seconds) {
  const impls::column& classes = rows.class_column();
  json_writer json;
  json.open('{').member("table", rows.name).member("rows", rows.cases.size());
  json.member("class", classes.get_name());
  options_to_json(json.key("options"), options);
  json.member("seconds", seconds);
  figures_to_json(json, result.quality);
  json.member("leaves", mean_leaves(result));
  json.member("depth", mean_depth(result));
  qualities_to_json(json.key("classes"), classes, result.quality.matrix());
  matrix_to_json(json.key("confusion_matrix"), classes, result.quality.matrix());
  json.key("folds").open('[');
  for (const fold_result& part : result.folds) fold_to_json(json, part);
  return json.close().close().text();
}

}  // namespace arbor::tree
