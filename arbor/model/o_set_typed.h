// The domain of one data type: values of type T, in ascending order.
//
// Two states: while values are inserted they collect in a builder; the first question freezes them
// into one sorted vector, and a later insertion pours that vector back into the builder.
#ifndef ARBOR_MODEL_O_SET_TYPED_H
#define ARBOR_MODEL_O_SET_TYPED_H

#include <string>
#include <vector>

#include "arbor/model/o_set.h"
#include "arbor/utils/datatype.h"
#include "arbor/utils/set.h"

namespace arbor::impls {

// T is datatype<int>, datatype<unsigned int>, datatype<float>, datatype<double> or
// datatype<std::string>. The operations are those of o_set; what is particular to a data type:
//
//   int, unsigned int   decimal digits, as str2int reads them
//   float, double       any number that strtod reads to the end of the text; a float is its nearest
//                       one, infinite when too large. A NaN is kept, has a code, and is found by no
//                       lookup.
//   std::string         the text itself. Texts are sorted as unsigned bytes but searched and
//                       compared as signed ones, so that a text with bytes of 0x80 and above may
//                       not be found.
//
// A domain that has been frozen does not release its vector of known values when it is destroyed:
// the vector is meant to live as long as the process, like the table whose codes it explains. (An
// insertion into a frozen domain, which thaws it, does release it.)
template <class T>
class o_set_typed : public o_set {
 public:
  o_set_typed(const std::string& data_type, bool admits_null, const std::string& null_text);

  void insert(const char* value) override;
  // Adds known values that are no longer texts, as if the text of each was inserted. Fastest when
  // they ascend, each once, and the domain had none. They have to be values that texts can tell:
  // not the least integer, and no text with a zero byte. One that is the null text is a known value
  // here, which no lookup finds.
  void insert_values(std::vector<T> values);
  unsigned int size_of_known() override;
  bool get_order(const char* value, unsigned int& code) override;
  std::string get_value(unsigned int code) override;
  o_set* clone() override;
  int leq(const std::string& a, const std::string& b) const override;
  int leq(unsigned int code, const std::string& b) override;
  std::string find_mid(unsigned int low, unsigned int high) override;
  unsigned int find_mid_code(unsigned int low, unsigned int high) override;
  strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) override;
  strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in) override;

 private:
  unsigned int mid_code(unsigned int low, unsigned int high);
  const std::vector<T>& frozen_values();  // freezes
  void freeze();
  void thaw();

  strata::adt::set<T> builder;
  std::vector<T>* known_values =
      nullptr;  // entry i has code i + 1; null while values are inserted, or saved as such
  bool frozen = false;
};

extern template class o_set_typed<strata::data_types::datatype<int>>;
extern template class o_set_typed<strata::data_types::datatype<unsigned int>>;
extern template class o_set_typed<strata::data_types::datatype<float>>;
extern template class o_set_typed<strata::data_types::datatype<double>>;
extern template class o_set_typed<strata::data_types::datatype<std::string>>;

}  // namespace arbor::impls

#endif
