// Saves decision trees to model files and loads them.
//
//   save_model("golf.model", tree);
//   decision_tree tree = load_model("golf.model");
#ifndef ARBOR_STORE_MODEL_STORE_H
#define ARBOR_STORE_MODEL_STORE_H

#include <string>
#include <string_view>
#include <vector>

#include "arbor/store/ownership.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Replaces the file as a whole, as file_replacement.h says. Throws table_error, ownership_error as
// one of them, or std::bad_alloc; a file that was there is then unchanged. The same tree always
// gives the same bytes.
void save_model(const std::string& path, const decision_tree& tree,
                ownership of_new_file = ownership::kept);

// `path` may be "-" for standard input. Throws table_error if the file cannot be read, is not a
// model, or is damaged, and std::bad_alloc if memory is short; it uses memory in proportion to the
// file. A tree that is returned is sound:
// every index, code and number in it may be used without a check.
decision_tree load_model(const std::string& path);

// The bytes of the model file, and the tree of such bytes; `name` is what messages call them. The
// exceptions are the same.
std::vector<unsigned char> model_bytes(const decision_tree& tree);
decision_tree model_of(std::vector<unsigned char> bytes, const std::string& name);

// Whether a file with this beginning is a model, of any format version.
bool begins_like_model(std::string_view beginning);

}  // namespace arbor::tree

#endif
