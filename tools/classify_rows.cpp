#include "tools/classify_rows.h"

#include "tools/messages.h"
#include "tools/progress_line.h"
#include "tools/table_options.h"

namespace arbor::tools {

tree::classification_options options_from(const tree::load_options& load) {
  tree::classification_options options;
  options.weights_name = load.weights_name;
  options.weights_from = load.weights_from;
  options.input = load.input;
  options.id_name = load.id_name;
  options.id_from = load.id_from;
  options.threads = load.threads;
  return options;
}

tree::classification_result classify_rows(const workplace& place,
                                          const std::vector<std::string>& paths,
                                          const tree::decision_tree& model,
                                          tree::classification_options options, std::ostream* rows,
                                          const std::string& advice) {
  progress_line progress;
  options.progress = [&](std::size_t done) {
    if (progress.due()) progress.show(std::to_string(done) + " rows classified");
  };
  tree::classification_result result = place.classify(paths, model, options, rows);
  progress.clear();
  show_remarks(result.table_name, result.input_remarks);
  for (const std::string& remark : result.remarks) complain(remark + advice);
  return result;
}

}  // namespace arbor::tools
