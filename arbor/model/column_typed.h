// A column that stores its codes in one, two, four or eight bytes a row.
#ifndef ARBOR_MODEL_COLUMN_TYPED_H
#define ARBOR_MODEL_COLUMN_TYPED_H

#include <vector>

#include "arbor/model/column.h"

namespace arbor::impls {

// T is unsigned char, unsigned short, unsigned int or unsigned long long. Made by
// column::NEW_COLUMN, which picks T so that every code of the domain fits.
template <class T>
class column_typed : public column {
 public:
  column_typed(o_set* domain, const std::string& name, _type type);

  column* clone(bool empty) override;
  void reserve(unsigned int rows) override;
  unsigned int size() const override { return static_cast<unsigned int>(values.size()); }
  // Throws "column require a valid o_set" for a text that the domain does not contain.
  void push_back(const char* value) override;
  void append_codes(const unsigned int* codes, unsigned int count) override;
  // For eight-byte codes the low 32 bits.
  unsigned int get_row_index(unsigned int row) const override {
    return static_cast<unsigned int>(values[row]);
  }
  // Compares codes in their full width.
  bool less_than(unsigned int a, unsigned int b) const override { return values[a] < values[b]; }

  w_sequence* partition(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                        unsigned int branch, float total, float& ratio,
                        strata::util::pair<unsigned int, unsigned int>& range,
                        const partition_desc& desc) const override;

  void quality_measure(column* class_column, float total_weight, w_sequence* cases,
                       strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight,
                       options* opts, splitting_desc& result, bool copy_cases) const override;

  // Reading appends the record's rows to those of the column, which is unchanged when it throws.
  strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) const override;
  strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in) override;

  // The measures that quality_measure chooses among; see there for the arguments. One branch per
  // value.
  void QualityMeasureDiscrete(column* class_column, float total_weight, w_sequence* cases,
                              strata::util::pair<unsigned int, unsigned int>& code_range,
                              float min_weight, splitting_desc& result) const;
  // The best threshold, by sorting the cases. With `copy_cases` false the caller's own are
  // reordered, even if the call then throws.
  void QualityMeasureContinuous(column* class_column, float total_weight, w_sequence* cases,
                                strata::util::pair<unsigned int, unsigned int>& code_range,
                                float min_weight, options* opts, splitting_desc& result,
                                bool copy_cases) const;
  // The best threshold, from class weights per code.
  void QualityMeasureContinuousRainForest(
      column* class_column, float total_weight, w_sequence* cases,
      strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight, options* opts,
      splitting_desc& result) const;

  // The codes in row order.
  const std::vector<T>& codes() const { return values; }

  // Orders cases by the codes of their rows: the key for counting_sort and the comparison for
  // std::sort. The column must outlive both.
  struct get_index_struct {
    explicit get_index_struct(const column_typed* ordering) : source(ordering) {}
    unsigned int operator()(const w_sequence::value_type& c) const {
      return source->get_row_index(c.first);
    }

    const column_typed* source;
  };
  struct less_than_struct {
    explicit less_than_struct(const column_typed* ordering) : source(ordering) {}
    bool operator()(const w_sequence::value_type& a, const w_sequence::value_type& b) const {
      return source->less_than(a.first, b.first);
    }

    const column_typed* source;
  };

 protected:
  std::vector<T> values;
};

extern template class column_typed<unsigned char>;
extern template class column_typed<unsigned short>;
extern template class column_typed<unsigned int>;
extern template class column_typed<unsigned long long>;

}  // namespace arbor::impls

#endif
