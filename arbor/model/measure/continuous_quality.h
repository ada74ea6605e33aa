// The quality of the best threshold of a continuous column, by sorting the cases: for nodes with
// few cases per code. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_CONTINUOUS_QUALITY_H
#define ARBOR_MODEL_MEASURE_CONTINUOUS_QUALITY_H

#include "arbor/model/column_typed.h"

namespace arbor::impls {

// Sets gain and split information of `result` and, where there is a split, its codes. The arguments
// mean what they mean in column::quality_measure. T as in column_typed.
template <class T>
void rate_continuous(const column_typed<T>& rated, const column& class_column, float total_weight,
                     w_sequence& cases,
                     const strata::util::pair<unsigned int, unsigned int>& code_range,
                     float min_weight, const options* opts, bool copy_cases,
                     column::splitting_desc& result);

}  // namespace arbor::impls

#endif
