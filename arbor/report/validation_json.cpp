#include "arbor/report/validation_json.h"

#include <limits>
#include <optional>

#include "arbor/report/json_texts.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"
#include "arbor/report/validation_report.h"

namespace arbor::tree {

namespace {

template <class Value>
std::optional<Value> value_if(bool exists, Value value) {
  return exists ? std::optional(value) : std::nullopt;
}

void options_to_json(json_writer& json, const validation_options& options) {
  constexpr unsigned int no_limit = std::numeric_limits<unsigned int>::max();
  const grow_options& grow = options.grow;
  json.open('{').member("folds", options.folds).member("repeats", options.repeats);
  json.member("seed", options.seed).member("tune", options.tune);
  json.member("min_weight", value_if(!options.tune, grow.min_weight));
  json.member("max_depth", value_if(grow.max_depth != no_limit, grow.max_depth));
  json.member("confidence", value_if(grow.prune && !options.tune, grow.confidence)).close();
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
  json.open('[');
  for (const class_quality& quality : quality_by_class(matrix)) {
    json.open('{').member("class", class_text(classes, quality.entry));
    json.member("cases", quality.actual).member("predicted", quality.predicted);
    json.member("precision", value_if(quality.predicted > 0, quality.precision()));
    json.member("recall", value_if(quality.actual > 0, quality.recall()));
    json.member("f1", quality.f1()).close();
  }
  json.close();
}

void matrix_to_json(json_writer& json, json_texts& texts, const impls::column& classes,
                    const confusion_matrix& matrix) {
  json.open('[');
  for (const auto& [pair, weight] : matrix.pairs()) {
    texts.class_member(json.open('{'), "actual", classes, pair.first);
    texts.class_member(json, "predicted", classes, pair.second);
    json.member("weight", weight).close();
  }
  json.close();
}

void losses_to_json(json_writer& json, const table& rows, const validation& result) {
  json.open('[');
  for (const std::size_t i : columns_by_importance(rows, result)) {
    const auto& [trees, loss] = result.attributes[i];
    json.open('{').member("attribute", rows.columns[i]->get_name()).member("trees", trees);
    json.member("log_loss", loss.log_loss).member("accuracy", loss.accuracy).close();
  }
  json.close();
}

void fold_to_json(json_writer& json, const fold_result& part) {
  json.open('{').member("repeat", part.repeat).member("fold", part.fold);
  json.member("cases", part.quality.matrix().total());
  json.member("accuracy", part.quality.accuracy());
  json.member("log_loss", part.quality.log_loss());
  json.member("brier", part.quality.brier_score());
  json.member("leaves", part.size.leaves).member("depth", part.size.depth);
  json.member("min_weight", part.min_weight).member("confidence", part.confidence).close();
}

}  // namespace

void write_validation_json(std::ostream& out, const table& rows, const validation_options& options,
                           const validation& result, double seconds) {
  const impls::column& classes = rows.class_column();
  json_writer json(out);
  json_texts texts;
  write_format(json.open('{'), "arbor-validation");
  json.member("table", rows.name).member("rows", rows.cases.size());
  json.member("class", classes.get_name());
  options_to_json(json.key("options"), options);
  json.member("seconds", seconds);
  figures_to_json(json, result.quality);
  json.member("leaves", mean_leaves(result)).member("depth", mean_depth(result));
  qualities_to_json(json.key("classes"), classes, result.quality.matrix());
  matrix_to_json(json.key("confusion_matrix"), texts, classes, result.quality.matrix());
  json.key("importance");
  if (options.importance) {
    losses_to_json(json, rows, result);
  } else {
    json.null();
  }
  json.key("folds").open('[');
  for (const fold_result& part : result.folds) fold_to_json(json, part);
  json.close();
  texts.write_long_texts(json);
  json.close();
}

}  // namespace arbor::tree
