// Columns for tests, built the way a table loader builds them.
#ifndef ARBOR_TESTS_SUPPORT_COLUMNS_H
#define ARBOR_TESTS_SUPPORT_COLUMNS_H

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/utils/memory_device.h"

namespace arbor::tests {

using arbor::impls::column;
using arbor::impls::o_set;
using texts = std::vector<std::string>;

// The parts of a text between commas.
inline texts listed(const std::string& text) {
  std::istringstream in(text + ",");
  texts parts;
  for (std::string part; std::getline(in, part, ',');) parts.push_back(part);
  return parts;
}

// A domain of `data_type` that admits "?" and holds `values` ("?" among them makes it contain the
// unknown value).
inline std::unique_ptr<o_set> make_domain(const std::string& data_type, const texts& values) {
  std::unique_ptr<o_set> domain(o_set::NEW_O_SET(data_type, true, "?"));
  for (const std::string& value : values) domain->insert(value.c_str());
  return domain;
}

// A column with `rows`, over a domain of just these values; throws what NEW_COLUMN refuses it with.
inline std::unique_ptr<column> make_column(const std::string& kind, const std::string& data_type,
                                           const texts& rows) {
  std::unique_ptr<o_set> domain = make_domain(data_type, rows);
  std::string error;
  std::unique_ptr<column> result(column::NEW_COLUMN(domain.get(), "x", kind, error));
  if (result == nullptr) throw std::runtime_error(error);
  domain.release();  // the column has adopted it
  for (const std::string& row : rows) result->push_back(row.c_str());
  return result;
}

// The record of a domain, a column (both by pointer) or a split.
template <class Source>
std::string record_of(const Source& source) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << source;
  return {device.bytes().begin(), device.bytes().end()};
}

// The domain or column whose record begins `bytes`, null if it is that of none. Throws what the
// record is refused with, and std::logic_error if the caller's pointer is not null then.
template <class Record>
std::unique_ptr<Record> read_record(const std::string& bytes) {
  strata::inpout::memory_device device({bytes.begin(), bytes.end()});
  strata::inpout::ibinstream in(device);
  auto* target = reinterpret_cast<Record*>(&device);
  try {
    in >> target;
  } catch (...) {
    if (target != nullptr) throw std::logic_error("a pointer is left after a failed read");
    throw;
  }
  return std::unique_ptr<Record>(target);
}

// The message of the error that `call` throws; empty when it throws none.
template <class Error = std::runtime_error, class Call>
std::string message_of(Call call) {
  try {
    return call(), "";
  } catch (const Error& error) {
    return error.what();
  }
}

}  // namespace arbor::tests

#endif
