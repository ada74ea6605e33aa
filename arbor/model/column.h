// One attribute of a table: for every row (case) the code of its value in the attribute's domain.
//
//   std::string error;
//   std::unique_ptr<column> outlook(column::NEW_COLUMN(domain, "outlook", "discrete", error));
//   if (outlook == nullptr) throw std::runtime_error(error);  // else the column owns the domain
//   for (const char* text : {"sunny", "?", "rainy"}) outlook->push_back(text);
//   unsigned int code = outlook->get_row_index(0);
//
// A tree builder rates each column on a node's cases with `quality_measure`, turns the best rating
// into the description of a split with `set_partition_desc`, and asks the column for the cases of
// each branch with `partition`.
//
// Code 0 is the unknown value, 1 to n are the known values in ascending order. Rows and codes are
// never range-checked.
//
// Every call that runs out of memory throws std::bad_alloc, or std::runtime_error "out of memory"
// from a column of bits. The column is unchanged then, nothing is leaked, and the call can be
// repeated.
#ifndef ARBOR_MODEL_COLUMN_H
#define ARBOR_MODEL_COLUMN_H

#include <iosfwd>
#include <string>

#include "arbor/model/o_set.h"
#include "arbor/model/options.h"
#include "arbor/model/w_sequence.h"
#include "arbor/utils/nocopy.h"
#include "arbor/utils/pair.h"

namespace arbor::impls {

// The base of all columns. It is also the column of an ignored attribute of the data type "null",
// and has no rows then.
class column : public strata::util::nocopy {
 public:
  // What an attribute is used for. The numbers are fixed; the saved form contains the texts.
  enum _type : int {
    DISCRETE = 0,    // nominal: a split has one branch per known value
    CLASS = 1,       // the target
    CONTINUOUS = 2,  // ordered: a split has two branches, at a threshold
    WEIGHTS = 3,     // the weight of each case
    IGNORE = 4       // kept in the table, never split on
  };

  struct splitting_desc;
  struct partition_desc;

  // Adopts `domain`; when anything is thrown, the domain stays the caller's. A null domain is
  // allowed as long as no call needs it.
  column(o_set* domain, const std::string& name, _type type);
  virtual ~column();

  // Makes an empty column of the narrowest class that can hold the codes of `domain`: one bit a row
  // for a discrete column of at most two known values and no unknown one, a plain column for the
  // data type "null", else 1, 2, 4 or 8 bytes a row.
  //
  // `domain` must contain all its values; `type` is "discrete", "continuous", "class", "weights" or
  // "ignore". On success the caller owns the column, the column owns the domain, and `error` is
  // unchanged. If a column of this kind cannot have this domain, returns null and sets `error` to
  // the reason. The domain stays the caller's then, and also when std::bad_alloc is thrown.
  static column* NEW_COLUMN(o_set* domain, const std::string& name, const std::string& type,
                            std::string& error);

  // Sets `kind` to the kind with the name `text` and returns true; returns false, with `kind`
  // unchanged, for any text that is not exactly a kind's name.
  static bool get_type(const std::string& text, _type& kind);

  // Returns whether a column of the kind named by `text` may contain unknown values: false for
  // "weights", true for any other text. Class columns may not contain them either, but it is
  // NEW_COLUMN that refuses those.
  static bool admits_null(const std::string& text);

  // Returns a column of the same class, kind and name with a copy of the domain, which the caller
  // owns. It has the same rows, or none if `empty`.
  virtual column* clone(bool empty);

  // Makes room for `rows` rows in total.
  virtual void reserve(unsigned int rows);
  virtual unsigned int size() const;

  // Appends a row. Throws std::runtime_error if the domain does not contain the text or there are
  // 4294967295 rows, and what the domain throws for a text that is not of its data type; the column
  // is unchanged then.
  virtual void push_back(const char* value);

  // Returns the code of a row's value, its low 32 bits if it has more.
  virtual unsigned int get_row_index(unsigned int row) const;
  // Returns whether the value of row `a` comes before that of row `b`.
  virtual bool less_than(unsigned int a, unsigned int b) const;

  // Writes a fixed line, which warns that there is no XML output.
  virtual void toXML(std::ostream& out) const;

  // Returns the cases of a node that go down one branch of a split on this column, in their order,
  // in a new sequence that the caller owns. A case whose value is unknown goes down every branch,
  // with its weight multiplied by the branch's share.
  //
  //   begin, end  the node's cases; read only
  //   branch      for a discrete split the code of the branch's value; for a continuous one 1 for
  //               the codes up to that of the threshold, 2 for those above it
  //   total       the weight of the node's cases, unknown values included
  //   ratio       receives the branch's share: its weight divided by that of the cases whose value
  //               is known. For the low branch of a continuous split both weights include the
  //               unknown cases
  //   range       receives the bounds [first, second) of the branch's codes: for a discrete branch
  //               its code; for a continuous one from the least to the greatest of the threshold's
  //               code and those of its cases
  //   desc        the split; only the threshold of a continuous one is read. A threshold that the
  //               domain does not contain has code 0, below all values
  //
  // Discrete and class columns are split by value, continuous ones at the threshold. All others,
  // continuous columns of bits and this base throw std::runtime_error. When anything is thrown,
  // `ratio` and `range` are unchanged. If `total` equals the weight of the unknown cases, the share
  // is infinite or not a number, and so are the weights that these cases get.
  virtual w_sequence* partition(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                                unsigned int branch, float total, float& ratio,
                                strata::util::pair<unsigned int, unsigned int>& range,
                                const partition_desc& desc) const;

  // Rates this column as the split of a node.
  //
  //   class_column  the class of every case, without unknown values; only read. The class of a case
  //                 whose value is unknown in this column is not read at all
  //   total_weight  the weight of all cases, unknown values included
  //   cases         the node's cases, at least one
  //   code_range    [first, second): bounds of the known codes of this column among the cases. The
  //                 cost of a call grows with its width, so tight bounds save time
  //   min_weight    the least weight of a branch that counts, 0 or more: a discrete split needs two
  //                 such branches; both sides of a threshold need it, or what the minimum-branch
  //                 rule allows instead
  //   opts          may be null, for the defaults
  //   result        receives the rating; `gain` is splitting_desc::no_split if no split is
  //                 admissible
  //   copy_cases    false lets the call reorder `cases`
  //
  // Throws std::bad_alloc and what the class column's get_row_index throws; `result` is incomplete
  // then.
  //
  // Several threads may make const calls, of this function and others, at the same time, on one
  // column or several, once every domain that they read (the class column's too) has been asked a
  // question, and as long as nothing is inserted or appended. Each call needs a `result` of its own
  // and, without `copy_cases`, cases of its own; with `copy_cases` they are only read and may be
  // shared.
  virtual void quality_measure(column* class_column, float total_weight, w_sequence* cases,
                               strata::util::pair<unsigned int, unsigned int>& code_range,
                               float min_weight, options* opts, splitting_desc& result,
                               bool copy_cases) const;

  // Write and read the rows, as part of the column's record; see the operators below. The base has
  // none.
  virtual strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out) const;
  virtual strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in);

  // Appends a row for each of `count` codes. Throws std::runtime_error "column require a valid
  // o_set", with the column unchanged, unless the domain has them all: the codes of its known
  // values, and 0 if it contains the unknown value; and if there would be more than 4294967295
  // rows. The base holds no rows and appends none.
  virtual void append_codes(const unsigned int* codes, unsigned int count);

  // Returns the name of the kind, or "unspecified" for a number that is not a kind.
  std::string get_type() const;
  std::string get_name() const { return name; }
  o_set* get_o_set() const { return domain.get(); }
  bool is_discrete() const { return type == DISCRETE; }
  bool is_class() const { return type == CLASS; }
  bool is_continuous() const { return type == CONTINUOUS; }
  bool is_weights() const { return type == WEIGHTS; }
  bool is_ignore() const { return type == IGNORE; }

  // Returns the number of codes, that of the unknown value included.
  unsigned int get_distinct() const { return domain->size_of_known() + 1; }
  // Returns the half-open range of the known codes: (1, n + 1), or (0, 0) if there are none.
  strata::util::pair<unsigned int, unsigned int> get_range() const;
  std::string get_value(unsigned int code) const { return domain->get_value(code); }
  std::string get_row_value(unsigned int row) const { return get_value(get_row_index(row)); }
  // Returns the code of a text, 0 for the unknown value and for a text that the domain does not
  // contain. Throws what the domain throws for a text that is not of its data type.
  unsigned int get_index(const char* value) const;
  // Returns the text of the threshold between two codes. A continuous column calls the domain's
  // find_mid, and throws what that throws; any other returns the null text.
  std::string find_threshold(unsigned int low, unsigned int high) const;

 protected:
  // Throws what append_codes throws for these codes.
  void check_codes(const unsigned int* codes, unsigned int count) const;
  // Throws unless `count` more rows can still be counted.
  void check_room(unsigned int count) const;

  _type type;
  std::string name;
  std::unique_ptr<o_set> domain;
};

// How good a split on a column would be.
struct column::splitting_desc {
  // The gain of a column that has no admissible split (bits 0xBA83126F).
  static constexpr float no_split = -0.001F;

  // 2 for a continuous split, else the number of known values; 0 if none was rated.
  unsigned int branches = 0;
  // Continuous splits: the codes next to the cut that occur among the cases.
  unsigned int low_code = 0;
  unsigned int high_code = 0;
  // The rated column; not owned.
  column* split_column = nullptr;
  // Bits per unit of weight, scaled by the known fraction; for a continuous split minus the penalty
  // for the number of cuts tried. Or no_split.
  float gain = 0;
  // Bits per unit of weight; 0 without a split.
  float split_info = 0;

  void set_no_split() {
    gain = no_split;
    split_info = 0;
  }

  // Sets `target` to the description of this split that `partition` needs. Its threshold is that of
  // a continuous split, else the null text of the domain. Throws what the domain's find_mid throws;
  // `target` is unchanged then.
  void set_partition_desc(partition_desc& target) const;
};

// A chosen split.
struct column::partition_desc {
  std::string threshold;
  unsigned int branches = 0;

  void reset();
};

// Writes the record of a column, which may be null, with its domain. Throws what the stream throws.
strata::inpout::obinstream& operator<<(strata::inpout::obinstream& out, const column* source);

// Reads a record. Sets `target` to a new column, made by NEW_COLUMN, which the caller owns, or to
// null if null was written. If NEW_COLUMN refuses the column, `target` is null, `error` has the
// message, and the rows are not read; otherwise `error` is unchanged. Throws what the stream and
// NEW_O_SET throw; `target` is null then.
strata::inpout::ibinstream& read_column(strata::inpout::ibinstream& in, column*& target,
                                        std::string& error);

// The same without the message.
strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in, column*& target);

// Writes and reads the record of a split. When reading throws, `split` is unchanged.
strata::inpout::obinstream& operator<<(strata::inpout::obinstream& out,
                                       const column::partition_desc& split);
strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in,
                                       column::partition_desc& split);

}  // namespace arbor::impls

#endif
