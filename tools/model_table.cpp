#include "tools/model_table.h"

#include "arbor/table/decimal_domain.h"
#include "arbor/tree/grower.h"

namespace arbor::tools {

tree::load_options options_for_model(tree::load_options chosen, const tree::decision_tree& model) {
  chosen.class_name = model.class_column->get_name();
  chosen.class_from = chosen.types_from = "the model";
  chosen.kinds_from = chosen.kinds.empty() ? "the model" : "the model or --kind";
  // Decimals are exact in any table: they may have another scale there, or be plain integers.
  const auto choose_type = [&](const impls::column& column) {
    const std::string type = tree::data_type_of(column);
    if (type != "decimal") chosen.types[column.get_name()] = type;
  };
  choose_type(*model.class_column);
  for (const auto& attribute : model.attributes) {
    choose_type(*attribute);
    chosen.kinds[attribute->get_name()] = attribute->get_type();
  }
  return chosen;
}

float least_weight_of(const tree::decision_tree& model) {
  return model.origin ? model.origin->min_weight : tree::grow_options().min_weight;
}

}  // namespace arbor::tools
