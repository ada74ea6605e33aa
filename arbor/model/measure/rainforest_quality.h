// The quality of the best threshold of a continuous column, from class weights per code: for nodes
// with many cases per code. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_RAINFOREST_QUALITY_H
#define ARBOR_MODEL_MEASURE_RAINFOREST_QUALITY_H

#include "arbor/model/column.h"
#include "arbor/model/measure/class_table.h"

namespace arbor::impls {

// Sets gain and split information of `result` and, where there is a split, its codes. `first_code`
// is the first of the code range that the table has, `case_count` the number of cases, unknown ones
// included; the other arguments mean what they mean in column::quality_measure.
template <class Weight>
void rate_rainforest(const class_table<Weight>& table, unsigned int first_code, float total_weight,
                     std::size_t case_count, float min_weight, const options* opts,
                     column::splitting_desc& result);

}  // namespace arbor::impls

#endif
