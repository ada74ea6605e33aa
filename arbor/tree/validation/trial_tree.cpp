#include "arbor/tree/validation/trial_tree.h"

#include <utility>

namespace arbor::tree {

namespace {

// An insertion makes a domain take its values back, and it releases them when it is destroyed.
void release_values(const impls::column& finished) {
  impls::o_set& domain = *finished.get_o_set();
  if (domain.admits_null()) domain.insert(domain.get_null());
}

}  // namespace

trial_tree::trial_tree(decision_tree grown) : tree(std::move(grown)) {}

trial_tree::~trial_tree() {
  release_values(*tree.class_column);
  for (const auto& attribute : tree.attributes) release_values(*attribute);
}

}  // namespace arbor::tree
