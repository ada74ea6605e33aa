#include "arbor/model/column_typed.h"

#include <memory>
#include <stdexcept>

#include "arbor/model/measure/case_partition.h"
#include "arbor/model/measure/continuous_quality.h"
#include "arbor/model/measure/discrete_quality.h"
#include "arbor/model/measure/rainforest_quality.h"
#include "arbor/utils/allocatable.h"

namespace arbor::impls {

template <class T>
column_typed<T>::column_typed(o_set* adopted_domain, const std::string& column_name, _type kind)
    : column(adopted_domain, column_name, kind) {}

template <class T>
column* column_typed<T>::clone(bool empty) {
  auto copy = std::make_unique<column_typed<T>>(nullptr, name, type);
  if (!empty) copy->values = values;
  copy->domain.reset(domain->clone());
  return copy.release();
}

template <class T>
void column_typed<T>::reserve(unsigned int rows) {
  values.reserve(strata::util::allocatable<T>(rows));
}

template <class T>
void column_typed<T>::push_back(const char* value) {
  unsigned int code = 0;
  if (!domain->get_order(value, code)) throw std::runtime_error("column require a valid o_set");
  check_room(1);
  strata::util::allocatable<T>(values.size() + 1ULL);
  values.push_back(static_cast<T>(code));
}

template <class T>
void column_typed<T>::append_codes(const unsigned int* codes, unsigned int count) {
  check_codes(codes, count);
  const std::size_t rows_before = values.size();
  values.resize(strata::util::allocatable<T>(0ULL + rows_before + count));
  for (unsigned int i = 0; i < count; ++i) values[rows_before + i] = static_cast<T>(codes[i]);
}

template <class T>
w_sequence* column_typed<T>::partition(w_sequence::const_iterator begin,
                                       w_sequence::const_iterator end, unsigned int branch,
                                       float total, float& ratio,
                                       strata::util::pair<unsigned int, unsigned int>& range,
                                       const partition_desc& desc) const {
  if (type != DISCRETE && type != CLASS && type != CONTINUOUS) {
    return column::partition(begin, end, branch, total, ratio, range, desc);
  }
  branch_cases result;
  if (type == CONTINUOUS) {
    const unsigned int threshold = get_index(desc.threshold.c_str());
    with_codes(*this, [&](auto code_of) {
      result = cases_of_side(begin, end, branch, total, code_of, threshold, range);
    });
  } else {
    with_codes(*this,
               [&](auto code_of) { result = cases_of_value(begin, end, branch, total, code_of); });
    range = {branch, branch + 1};
  }
  ratio = result.ratio;
  return result.cases.release();
}

template <class T>
strata::inpout::obinstream& column_typed<T>::bin_out(strata::inpout::obinstream& out) const {
  out << size();
  return values.empty() ? out : out.write_block(values.data(), size());
}

template <class T>
strata::inpout::ibinstream& column_typed<T>::bin_in(strata::inpout::ibinstream& in) {
  unsigned int count = 0;
  in >> count;
  if (count == 0) return in;
  in.expect(count, sizeof(T));
  check_room(count);
  const std::size_t rows_before = values.size();
  values.resize(strata::util::allocatable<T>(0ULL + rows_before + count));
  try {
    return in.read_block(values.data() + rows_before, count);
  } catch (...) {
    values.resize(rows_before);
    throw;
  }
}

template <class T>
void column_typed<T>::quality_measure(column* class_column, float total_weight, w_sequence* cases,
                                      strata::util::pair<unsigned int, unsigned int>& code_range,
                                      float min_weight, options* opts, splitting_desc& result,
                                      bool copy_cases) const {
  result.branches = 0;
  result.split_column = const_cast<column_typed*>(this);  // handed out, not changed
  result.set_no_split();
  const unsigned int width = code_range.second - code_range.first;
  if (width <= 1) return;
  if (type == DISCRETE) {
    QualityMeasureDiscrete(class_column, total_weight, cases, code_range, min_weight, result);
  } else if (type == CONTINUOUS && cases->size() / width > 2) {
    QualityMeasureContinuousRainForest(class_column, total_weight, cases, code_range, min_weight,
                                       opts, result);
  } else if (type == CONTINUOUS) {
    QualityMeasureContinuous(class_column, total_weight, cases, code_range, min_weight, opts,
                             result, copy_cases);
  }
}

template <class T>
void column_typed<T>::QualityMeasureDiscrete(
    column* class_column, float total_weight, w_sequence* cases,
    strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight,
    splitting_desc& result) const {
  result.branches = domain->size_of_known();
  with_column_codes(*this, [&](auto code_of) {
    with_class_table(code_of, *class_column, *cases, code_range, [&](const auto& table) {
      rate_discrete(table, total_weight, min_weight, result);
    });
  });
}

template <class T>
void column_typed<T>::QualityMeasureContinuous(
    column* class_column, float total_weight, w_sequence* cases,
    strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight, options* opts,
    splitting_desc& result, bool copy_cases) const {
  result.branches = 2;
  rate_continuous(*this, *class_column, total_weight, *cases, code_range, min_weight, opts,
                  copy_cases, result);
}

template <class T>
void column_typed<T>::QualityMeasureContinuousRainForest(
    column* class_column, float total_weight, w_sequence* cases,
    strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight, options* opts,
    splitting_desc& result) const {
  result.branches = 2;
  with_column_codes(*this, [&](auto code_of) {
    with_class_table(code_of, *class_column, *cases, code_range, [&](const auto& table) {
      rate_rainforest(table, code_range.first, total_weight, cases->size(), min_weight, opts,
                      result);
    });
  });
}

template class column_typed<unsigned char>;
template class column_typed<unsigned short>;
template class column_typed<unsigned int>;
template class column_typed<unsigned long long>;

}  // namespace arbor::impls
