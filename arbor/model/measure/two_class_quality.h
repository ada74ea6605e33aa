// The quality of the best threshold for cases of two classes that all weigh the same. Internal to
// the model.
#ifndef ARBOR_MODEL_MEASURE_TWO_CLASS_QUALITY_H
#define ARBOR_MODEL_MEASURE_TWO_CLASS_QUALITY_H

#include "arbor/model/column.h"
#include "arbor/model/measure/packed_cases.h"

namespace arbor::impls {

// Sets gain and split information of `result` and, where there is a split, its codes; `result`
// holds the no-split mark before. `case_count` includes unknown values; the other arguments mean
// what they mean in column::quality_measure.
void rate_two_classes(const packed_cases& cases, float total_weight, std::size_t case_count,
                      float min_weight, const options* opts, column::splitting_desc& result);

}  // namespace arbor::impls

#endif
