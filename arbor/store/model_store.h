// Decision trees in files.
//
//   save_model("golf.model", tree);
//   decision_tree tree = load_model("golf.model");
#ifndef ARBOR_STORE_MODEL_STORE_H
#define ARBOR_STORE_MODEL_STORE_H

#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Replaces the file, whole or not at all. Throws table_error or std::bad_alloc; what was there
// before is there still, then. The same tree always gives the same bytes.
void save_model(const std::string& path, const decision_tree& tree);

// Throws table_error for what cannot be read, is no model, or is damaged. A tree that is returned
// is sound: every index, code and number in it may be used without a check. Memory is taken in
// proportion to the file; std::bad_alloc tells of its lack.
decision_tree load_model(const std::string& path);

}  // namespace arbor::tree

#endif
