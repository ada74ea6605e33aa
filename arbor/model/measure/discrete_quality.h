// The quality of a discrete split, with one branch per value. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_DISCRETE_QUALITY_H
#define ARBOR_MODEL_MEASURE_DISCRETE_QUALITY_H

#include "arbor/model/measure/class_table.h"
#include "arbor/model/measure/sparse_class_table.h"

namespace arbor::impls {

// Sets gain and split information of `result`, or the no-split mark unless at least two values
// carry `min_weight`. The arguments mean what they mean in column::quality_measure.
template <class Weight>
void rate_discrete(const class_table<Weight>& table, float total_weight, float min_weight,
                   column::splitting_desc& result);

void rate_discrete(const sparse_class_table& table, float total_weight, float min_weight,
                   column::splitting_desc& result);

}  // namespace arbor::impls

#endif
