// The saved form of domains, columns and splits, in the encodings of obinstream.
//
// domain:  presence u8 (0: no domain, nothing follows) | data type, text | admits null u8 |
//          contains null u8 | null text, text | values
// column:  presence u8 (0: no column, nothing follows) | domain | name, text | kind, text | rows
// split:   threshold, text | branches u32
//
// The values are a vector, presence u8 | count u32 | values in the order of their codes; a "null"
// domain has none of this. The rows are count u32 | codes, or for a column of bits count u32 |
// whole words u32, where row i is bit i & 31 of word i >> 5; a plain column has none of this. The
// width of a code is not saved: it follows from the domain and the kind.

#include <memory>
#include <string>
#include <utility>

#include "arbor/model/column.h"
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

obinstream& column::bin_out(obinstream& out) const {
  return out;
}

ibinstream& column::bin_in(ibinstream& in) {
  return in;
}

obinstream& operator<<(obinstream& out, const column* source) {
  if (source == nullptr) return out << false;
  out << true << source->get_o_set() << source->get_name().c_str() << source->get_type().c_str();
  return source->bin_out(out);
}

ibinstream& read_column(ibinstream& in, column*& target, std::string& error) {
  target = nullptr;
  bool present = false;
  in >> present;
  if (!present) return in;
  o_set* domain = nullptr;
  in >> domain;
  std::unique_ptr<o_set> owner(domain);
  std::string name;
  std::string kind;
  in >> name >> kind;
  std::unique_ptr<column> loaded(column::NEW_COLUMN(domain, name, kind, error));
  if (loaded == nullptr) return in;
  owner.release();  // the column owns it now
  loaded->bin_in(in);
  target = loaded.release();
  return in;
}

ibinstream& operator>>(ibinstream& in, column*& target) {
  std::string not_reported;
  return read_column(in, target, not_reported);
}

obinstream& operator<<(obinstream& out, const column::partition_desc& split) {
  return out << split.threshold.c_str() << split.branches;
}

ibinstream& operator>>(ibinstream& in, column::partition_desc& split) {
  column::partition_desc loaded;
  in >> loaded.threshold >> loaded.branches;
  split = std::move(loaded);
  return in;
}

}  // namespace arbor::impls
