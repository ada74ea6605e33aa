// The record of a column, in the encodings of obinstream:
//
//   presence u8 (0: no column, and nothing follows) | domain record | name, text | kind, text | rows
//
// The rows are, of a column of codes, count u32 | codes; of a column of bits, count u32 | whole
// words u32, row i being bit i & 31 of word i >> 5; of a plain column nothing at all. The width of
// a code is not stored: it follows from domain and kind, by which the column is made anew.
//
// The record of a split is threshold, text | branches u32.

#include <memory>

#include "arbor/model/column.h"
#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"

namespace arbor::impls {

using strata::inpout::ibinstream;
using strata::inpout::obinstream;

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
  owner.release();  // the column has adopted it
  loaded->bin_in(in);
  target = loaded.release();
  return in;
}

ibinstream& operator>>(ibinstream& in, column*& target) {
  std::string dropped;
  return read_column(in, target, dropped);
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
