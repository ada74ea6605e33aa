#include <exception>
#include <iostream>

#include "arbor/report/evaluation_report.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/table_classification.h"

using namespace arbor::tree;

int main() try {
  const decision_tree golf = grow_tree(load_table("data/golf.csv"));
  write_tree_text(std::cout, golf);
  save_model("golf.model", golf);

  const decision_tree loaded = load_model("golf.model");
  const auto result = classify_table("data/golf.csv", loaded, {}, &std::cout);
  std::cout << evaluation_as_text("training", *loaded.class_column, result.quality.value());
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
