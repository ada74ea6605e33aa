// The record of a domain, in the encodings of obinstream:
//
//   presence u8 (0: no domain, and nothing follows) | data type, text | admits null u8 | contains null u8 |
//   null text, text | values
//
// The values are a vector record, presence u8 | count u32 | value after value in the order of their
// codes; those of a "null" domain are not there at all.

#include "arbor/model/o_set.h"

namespace arbor::impls {

using strata::inpout::ibinstream;
using strata::inpout::obinstream;

obinstream& o_set::bin_out(obinstream& out) {
  return out;
}

ibinstream& o_set::bin_in(ibinstream& in) {
  return in;
}

obinstream& operator<<(obinstream& out, o_set* domain) {
  if (domain == nullptr) return out << false;
  out << true << domain->get_datatype().c_str() << domain->admits_null() << domain->contains_null()
      << domain->get_null();
  return domain->bin_out(out);
}

ibinstream& operator>>(ibinstream& in, o_set*& domain) {
  domain = nullptr;
  bool present = false;
  in >> present;
  if (!present) return in;
  std::string data_type;
  bool admits_null = false;
  bool contains_null = false;
  std::string null_text;
  in >> data_type >> admits_null >> contains_null >> null_text;
  std::unique_ptr<o_set> loaded(o_set::NEW_O_SET(data_type, admits_null, null_text));
  loaded->contains_null_ = contains_null;
  loaded->bin_in(in);
  domain = loaded.release();
  return in;
}

}  // namespace arbor::impls
