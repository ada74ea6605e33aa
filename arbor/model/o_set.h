// The value domain of an attribute: its distinct values, known and unknown, and the code of each.
//
//   std::unique_ptr<o_set> sizes(o_set::NEW_O_SET("integer", true, "?"));
//   for (const char* text : {"40", "38", "?", "38"}) sizes->insert(text);
//   unsigned int code = 0;
//   bool there = sizes->get_order("40", code);  // true, 2: the codes of 38 and 40 are 1 and 2
//   std::string text = sizes->get_value(1);     // "38"
//
// Code 0 is the unknown (null) value; the known values have the codes 1 to n in ascending order. A
// domain is filled by `insert` and then asked; the first question puts the values in order, and an
// insertion after it may shift codes. That question changes the domain; those after it only read,
// and may be asked by several threads at once.
//
// Whatever is thrown, std::bad_alloc for one, the values stay as they were, and what was called may
// be called again.
//
// Texts that go in are NUL-terminated, no null pointers. Floating-point numbers are read and
// printed in the process's locale, which no thread may change meanwhile.
#ifndef ARBOR_MODEL_O_SET_H
#define ARBOR_MODEL_O_SET_H

#include <memory>
#include <string>

#include "arbor/utils/ibinstream.h"
#include "arbor/utils/nocopy.h"
#include "arbor/utils/obinstream.h"

namespace arbor::impls {

// The base of all domains, and itself the domain of the data type "null", which holds nothing but
// the unknown value.
class o_set : private strata::util::nocopy {
 public:
  // `data_type` is what get_datatype tells; `admits_null` whether the unknown value may be
  // inserted; `null_text` its text, of which the domain keeps a copy. An empty `null_text` is
  // legal.
  o_set(const std::string& data_type, bool admits_null, const std::string& null_text);
  virtual ~o_set();

  // Creates the domain of a data type: "integer", "uinteger", "float", "double", "string" or
  // "null". The caller owns it. Throws std::runtime_error "invalid o_set type = <name>" for any
  // other name.
  static o_set* NEW_O_SET(const std::string& data_type, bool admits_null,
                          const std::string& null_text);

  // Adds a value; one that is there already changes nothing. Throws std::runtime_error, and adds
  // nothing, for the null text when it is not admitted and for a text that is not of the data type.
  // The base ignores every known value.
  virtual void insert(const char* value);

  // How many known values there are.
  virtual unsigned int size_of_known();

  // Looks a text up. Returns whether the domain holds it and then sets `code`, else leaves `code`
  // alone. The null text is held once it has been inserted. Throws std::runtime_error for a text
  // that is not of the data type.
  virtual bool get_order(const char* value, unsigned int& code);

  // The text of a code; the null text for 0 and for codes that do not exist.
  virtual std::string get_value(unsigned int code);

  // A domain of its own with the same values, which the caller owns.
  virtual o_set* clone();

  // Whether the first value is greater (1) or less than or equal (0); -1 when either is the null
  // value or the domain cannot compare. The first value is a text, or a code that must exist.
  // Throws std::runtime_error for a text that is not of the data type; of two such texts the error
  // names `b`.
  virtual int leq(const std::string& a, const std::string& b) const;
  virtual int leq(unsigned int code, const std::string& b);

  // The text of the threshold between the values of two codes: the largest known value from `low`
  // to `high` that does not exceed the middle of the two. A middle that rounds up to the high
  // value, as those of neighbouring floats and of a number and infinity do, gives the high value
  // itself. Throws std::runtime_error when a code is 0 or does not exist, when `low` is above
  // `high`, and always for a domain that has no middle (this base, and texts).
  virtual std::string find_mid(unsigned int low, unsigned int high);

  // Write and read what the record of a domain holds beyond its head: nothing in the base, the
  // known values in the others. Reading replaces the values. See the operators below.
  virtual strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out);
  virtual strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in);

  // The code of the value that find_mid gives, without its text in between. Throws what that
  // throws.
  virtual unsigned int find_mid_code(unsigned int low, unsigned int high);

  bool admits_null() const { return admits_null_; }
  bool contains_null() const { return contains_null_; }  // whether the null text has been inserted
  const char* get_null() const { return null_value.get(); }  // the domain's own array
  std::string get_datatype() const { return type_name; }
  bool is_dt_null() const { return type_name == "null"; }
  bool is_dt_numeric() const;  // "integer", "uinteger" or "float", not "double"

 protected:
  bool is_null(const char* value) const;
  void insert_null();

  friend strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in, o_set*& domain);

  bool contains_null_ = false;
  bool admits_null_;
  std::unique_ptr<char[]> null_value;  // NUL-terminated
  std::string type_name;
};

// Writes the record of a domain, or of its absence if `domain` is null. Writing puts the values in
// order, as questions do.
strata::inpout::obinstream& operator<<(strata::inpout::obinstream& out, o_set* domain);

// Reads a record into a new domain, which the caller owns; null if it was. Throws what the stream
// throws and what NEW_O_SET throws for an unknown data type; `domain` is null then.
strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in, o_set*& domain);

}  // namespace arbor::impls

#endif
