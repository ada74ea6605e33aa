// The value domain of an attribute: its distinct values, known and unknown, and the code of each.
//
//   std::unique_ptr<o_set> sizes(o_set::NEW_O_SET("integer", true, "?"));
//   for (const char* text : {"40", "38", "?", "38"}) sizes->insert(text);
//   unsigned int code = 0;
//   bool there = sizes->get_order("40", code);  // true, 2: the codes of 38 and 40 are 1 and 2
//   std::string text = sizes->get_value(1);     // "38"
//
// Code 0 is the unknown (null) value; the known values have the codes 1 to n in ascending order. A
// domain is first filled by `insert`. The first question puts its values in order; an insertion
// after that may change codes. This first question changes the domain. Later ones only read it, so
// several threads may ask them at the same time.
//
// When anything is thrown (std::bad_alloc by every function that allocates), the values are as they
// were before, and the call can be repeated.
//
// Texts passed in are NUL-terminated and not null pointers. Floating-point numbers are read and
// printed in the process's locale, which must not change during a call.
#ifndef ARBOR_MODEL_O_SET_H
#define ARBOR_MODEL_O_SET_H

#include <memory>
#include <string>

#include "arbor/utils/ibinstream.h"
#include "arbor/utils/nocopy.h"
#include "arbor/utils/obinstream.h"

namespace arbor::impls {

// The base of all domains. It is also the domain of the data type "null", which has no known
// values.
class o_set : private strata::util::nocopy {
 public:
  // `data_type` is the name that get_datatype returns; `admits_null` is whether the unknown value
  // may be inserted; `null_text` is its text, which is copied and may be empty.
  o_set(const std::string& data_type, bool admits_null, const std::string& null_text);
  virtual ~o_set();

  // Creates the domain of a data type: "integer", "uinteger", "float", "double", "string" or
  // "null". The caller owns it. Throws std::runtime_error "invalid o_set type = <name>" for any
  // other name.
  static o_set* NEW_O_SET(const std::string& data_type, bool admits_null,
                          const std::string& null_text);

  // Adds a value, unless it is there already. Throws std::runtime_error for the null text if it is
  // not admitted, and for a text that is not of the data type; nothing is added then. The base
  // ignores all other texts than the null text.
  virtual void insert(const char* value);

  // Returns how many known values there are.
  virtual unsigned int size_of_known();

  // Looks up a text. Returns whether the domain contains it, the null text only once it has been
  // inserted; sets `code` then, and leaves it unchanged otherwise. Throws std::runtime_error for a
  // text that is not of the data type.
  virtual bool get_order(const char* value, unsigned int& code);

  // Returns the text of a code; the null text for 0 and for codes that do not exist.
  virtual std::string get_value(unsigned int code);

  // Returns a copy, which the caller owns.
  virtual o_set* clone();

  // Compares two values, the first of which is a text or an existing code. Returns 1 if the first
  // is greater, 0 if it is less or equal (or either is a NaN), and -1 if either is the null value
  // or the domain cannot compare. Throws std::runtime_error for a text that is not of the data
  // type; if both are not, the message is about `b`.
  virtual int leq(const std::string& a, const std::string& b) const;
  virtual int leq(unsigned int code, const std::string& b);

  // Returns the text of the threshold between the values of two codes: the largest known value from
  // `low` to `high` that is not greater than the middle between the two. If the middle is rounded
  // up to the high value, as between neighbouring floats or a number and infinity, that is the high
  // value itself. Throws std::runtime_error if a code is 0 or does not exist, if `low` is greater
  // than `high`, and always for domains without a middle (this base, and texts).
  virtual std::string find_mid(unsigned int low, unsigned int high);

  // Write and read the part of a domain's record that depends on its class: the known values, or
  // nothing for the base. Reading replaces the values; they are unchanged when it throws. To save
  // and load a domain use the operators below.
  virtual strata::inpout::obinstream& bin_out(strata::inpout::obinstream& out);
  virtual strata::inpout::ibinstream& bin_in(strata::inpout::ibinstream& in);

  // Returns the code of the value whose text find_mid returns. Throws what that throws.
  virtual unsigned int find_mid_code(unsigned int low, unsigned int high);

  bool admits_null() const { return admits_null_; }
  bool contains_null() const { return contains_null_; }  // whether the null text has been inserted
  const char* get_null() const { return null_value.get(); }  // owned by the domain
  std::string get_datatype() const { return type_name; }
  bool is_dt_null() const { return type_name == "null"; }
  bool is_dt_numeric() const;  // "integer", "uinteger" or "float", not "double"

  // Makes the domain, and every clone of it from now on, release its known values when it is
  // destroyed. Otherwise they stay until the process ends, see o_set_typed.h.
  void release_values_at_end() { releases_values = true; }

 protected:
  bool is_null(const char* value) const;
  void insert_null();

  friend strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in, o_set*& domain);

  bool contains_null_ = false;
  bool admits_null_;
  bool releases_values = false;
  std::unique_ptr<char[]> null_value;  // NUL-terminated
  std::string type_name;
};

// Writes the record of a domain, which may be null. Puts the values in order, as a question does.
// Throws what the stream throws.
strata::inpout::obinstream& operator<<(strata::inpout::obinstream& out, o_set* domain);

// Reads a record. Sets `domain` to a new domain, which the caller owns, or to null if null was
// written. Throws what the stream throws, and what NEW_O_SET throws for an unknown data type;
// `domain` is null then.
strata::inpout::ibinstream& operator>>(strata::inpout::ibinstream& in, o_set*& domain);

}  // namespace arbor::impls

#endif
