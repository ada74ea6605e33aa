// The record of a tree: its bytes in a model file. Internal to the store.
#ifndef ARBOR_STORE_MODEL_RECORD_H
#define ARBOR_STORE_MODEL_RECORD_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The version of records that model_record writes; read_model_record reads all from 1 on.
constexpr unsigned int record_version = 2;

// The same tree always gives the same bytes.
std::vector<unsigned char> model_record(const decision_tree& tree);

// The tree of a record, checked: every index, code and number in it may be used without another
// check. Throws std::runtime_error with what is wrong, and std::bad_alloc or
// strata::util::no_storage if memory is short. Uses memory in proportion to the record.
decision_tree read_model_record(std::vector<unsigned char> record, unsigned int version);

}  // namespace arbor::tree

#endif
