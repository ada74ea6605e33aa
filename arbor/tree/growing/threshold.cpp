#include "arbor/tree/growing/threshold.h"

#include "arbor/table/value_text.h"

namespace arbor::tree {

cut cut_of(const impls::column::splitting_desc& rating) {
  return {rating.low_code, rating.high_code};
}

unsigned int threshold_code(const impls::column& attribute, cut place) {
  const unsigned int middle = attribute.get_o_set()->find_mid_code(place.low_code, place.high_code);
  const bool separates = place.low_code <= middle && middle < place.high_code;
  return separates ? middle : place.low_code;
}

std::string threshold_text(const impls::column& attribute, cut place) {
  std::string middle = attribute.find_threshold(place.low_code, place.high_code);
  const bool is_found = attribute.get_index(middle.c_str()) == threshold_code(attribute, place);
  return is_found ? middle : shortest_value(attribute, place.low_code);
}

}  // namespace arbor::tree
