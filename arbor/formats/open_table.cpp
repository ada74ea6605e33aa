#include "arbor/formats/open_table.h"

#include "arbor/csv/input_file.h"

namespace arbor::tree {

table_file open_table_file(const std::string& path, const input_options& /*options*/) {
  return {std::make_unique<input_file>(path), std::nullopt};
}

}  // namespace arbor::tree
