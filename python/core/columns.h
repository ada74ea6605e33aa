// The columns of a table that Python holds, as the library reads them: by reference, except for
// those of Python objects, which become numbers of texts.
#ifndef ARBOR_PYTHON_CORE_COLUMNS_H
#define ARBOR_PYTHON_CORE_COLUMNS_H

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arbor/table/memory_column.h"

namespace arbor::python {

class columns {
 public:
  // Numbers of a numpy type in the machine's order of bytes; `unknown` is None or an array of bool.
  void add_numbers(const std::string& name, const pybind11::array& numbers,
                   const pybind11::object& unknown);
  // Integers that say which of the texts each row has; others are the unknown value.
  void add_texts(const std::string& name, const pybind11::array& numbers,
                 std::vector<std::string> texts);
  // Objects: texts, numbers, and other scalars by their str(). None, `unknowns`, and what is not
  // equal to itself are the unknown value. Raises TypeError for what `is_scalar` denies.
  void add_objects(const std::string& name, const pybind11::array& objects,
                   const pybind11::sequence& unknowns, const pybind11::function& is_scalar);

  const std::vector<tree::memory_column>& all() const { return made; }

 private:
  std::vector<tree::memory_column> made;
  std::vector<pybind11::array> arrays;                            // that the columns refer to
  std::vector<std::unique_ptr<std::vector<std::int32_t>>> codes;  // the same
};

}  // namespace arbor::python

#endif
