#include "python/core/columns.h"

#include <array>
#include <limits>
#include <optional>
#include <string_view>

#include "arbor/csv/shown_text.h"
#include "arbor/table/cells/text_dictionary.h"

namespace arbor::python {

namespace py = pybind11;

namespace {

tree::number_span span_of(const py::array& numbers) {
  using type = tree::number_span::type;
  if (numbers.ndim() != 1) throw py::value_error("a column has one dimension");
  const char kind = numbers.dtype().kind();
  const py::ssize_t size = numbers.itemsize();
  const auto by_size = [&](type one, type two, type four, type eight) {
    return size == 1 ? one : size == 2 ? two : size == 4 ? four : eight;
  };
  tree::number_span span{type::float64, numbers.data(), static_cast<std::size_t>(numbers.shape(0)),
                         numbers.strides(0)};
  if (kind == 'i') {
    span.of = by_size(type::int8, type::int16, type::int32, type::int64);
  } else if (kind == 'u' || kind == 'b') {
    span.of = by_size(type::uint8, type::uint16, type::uint32, type::uint64);
  } else if (kind == 'f' && (size == 4 || size == 8)) {
    span.of = size == 4 ? type::float32 : type::float64;
  } else {
    throw py::type_error("no numbers of a type that is read: " +
                         std::string(py::str(numbers.dtype())));
  }
  return span;
}

// Gives objects the numbers of their texts. Most rows have an object that a row before them has, or
// at least a text, so that few texts are looked up.
class object_texts {
 public:
  object_texts(const std::string& name, const py::sequence& unknowns, const py::function& is_scalar)
      : column(name), unknown(unknowns), scalar(is_scalar) {}

  std::int32_t number_of(PyObject* object, std::size_t row) {
    known& place = recent[(reinterpret_cast<std::uintptr_t>(object) >> 4U) % recent.size()];
    // The column refers to the object, so that no other one has its address.
    if (place.object != object) {
      const auto kept =
          py::reinterpret_borrow<py::object>(object);  // if its str() changes the column
      place = {object, new_number(object, row)};
    }
    return place.number;
  }

  std::vector<std::string> texts() const {
    std::vector<std::string> all;
    for (unsigned int code = 1; code <= dictionary.size(); ++code)
      all.emplace_back(dictionary.view(code));
    return all;
  }

 private:
  struct known {
    PyObject* object = nullptr;
    std::int32_t number = -1;
  };

  std::int32_t new_number(PyObject* object, std::size_t row) {
    if (PyUnicode_Check(object)) return number_of_text(object, row);
    if (is_unknown(object)) return -1;
    const py::handle handle(object);
    if (!PyLong_Check(object) && !PyFloat_Check(object) && !scalar(handle).cast<bool>()) {
      const py::handle type(reinterpret_cast<PyObject*>(Py_TYPE(object)));
      throw py::type_error("column " + tree::in_quotes(column) + ", row " + std::to_string(row) +
                           ": argument must be a string or a number, or another scalar, not " +
                           std::string(py::str(type.attr("__name__"))));
    }
    const py::str text(handle);
    return number_of_text(text.ptr(), row);
  }

  bool is_unknown(PyObject* object) const {
    if (object == Py_None) return true;
    if (PyFloat_Check(object)) return PyFloat_AS_DOUBLE(object) != PyFloat_AS_DOUBLE(object);
    if (PyLong_Check(object)) return false;
    for (const py::handle one : unknown) {
      if (one.ptr() == object) return true;
    }
    if (!scalar(py::handle(object)).cast<bool>()) return false;
    // Python's own shortcut would take an object as equal to itself without asking it.
    const auto differs =
        py::reinterpret_steal<py::object>(PyObject_RichCompare(object, object, Py_NE));
    if (!differs) throw py::error_already_set();
    return differs.cast<bool>();
  }

  std::int32_t number_of_text(PyObject* text, std::size_t row) {
    Py_ssize_t length = 0;
    py::object encoded;
    const char* characters = nullptr;
    if (PyUnicode_IS_READY(text) && PyUnicode_IS_COMPACT_ASCII(text)) {
      characters = PyUnicode_AsUTF8AndSize(text, &length);
    } else {  // the text would keep its bytes, which take more memory
      encoded = py::reinterpret_steal<py::object>(
          PyUnicode_AsEncodedString(text, "utf-8", "surrogateescape"));
      if (encoded) PyBytes_AsStringAndSize(encoded.ptr(), const_cast<char**>(&characters), &length);
    }
    if (characters == nullptr) {
      if (PyErr_ExceptionMatches(PyExc_UnicodeEncodeError) == 0) throw py::error_already_set();
      PyErr_Clear();
      throw py::value_error("column " + tree::in_quotes(column) + ", row " + std::to_string(row) +
                            ": a text has a surrogate, which is no character");
    }
    const std::string_view view(characters, static_cast<std::size_t>(length));
    if (view.find('\0') != view.npos) {
      throw py::value_error("column " + tree::in_quotes(column) + ", row " + std::to_string(row) +
                            ": a text has a zero byte");
    }
    if (dictionary.size() == std::numeric_limits<std::int32_t>::max())
      throw py::value_error("column " + tree::in_quotes(column) + ": more than 2147483647 texts");
    return static_cast<std::int32_t>(dictionary.code_of(copy.of(view)) - 1);
  }

  const std::string& column;
  const py::sequence& unknown;
  const py::function& scalar;
  std::array<known, 4096> recent{};
  tree::text_dictionary dictionary;
  tree::readable_copy copy;
};

}  // namespace

void columns::add_numbers(const std::string& name, const py::array& numbers,
                          const py::object& unknown) {
  tree::memory_column column{name, span_of(numbers), {}, nullptr, 1};
  arrays.push_back(numbers);
  if (!unknown.is_none()) {
    const auto bytes = unknown.cast<py::array>();
    if (bytes.itemsize() != 1 || bytes.ndim() != 1 || bytes.shape(0) != numbers.shape(0))
      throw py::value_error("unknown values are an array of bool, one for each row");
    column.unknown = static_cast<const unsigned char*>(bytes.data());
    column.unknown_stride = bytes.strides(0);
    arrays.push_back(bytes);
  }
  made.push_back(std::move(column));
}

void columns::add_texts(const std::string& name, const py::array& numbers,
                        std::vector<std::string> texts) {
  tree::memory_column column{name, span_of(numbers), std::move(texts), nullptr, 1};
  if (numbers.dtype().kind() == 'f') throw py::type_error("codes are integers");
  arrays.push_back(numbers);
  made.push_back(std::move(column));
}

void columns::add_objects(const std::string& name, const py::array& objects,
                          const py::sequence& unknowns, const py::function& is_scalar) {
  constexpr std::size_t between_checks = 1U << 16U;
  if (objects.ndim() != 1 || objects.dtype().kind() != 'O')
    throw py::type_error("a column of objects is an array of them");
  const auto count = static_cast<std::size_t>(objects.shape(0));
  auto numbers = std::make_unique<std::vector<std::int32_t>>(count);
  const auto texts = std::make_unique<object_texts>(name, unknowns, is_scalar);
  for (std::size_t row = 0; row < count; ++row) {
    if (row % between_checks == 0 && PyErr_CheckSignals() != 0) throw py::error_already_set();
    PyObject* const object =
        *static_cast<PyObject* const*>(objects.data(static_cast<py::ssize_t>(row)));
    (*numbers)[row] = object == nullptr ? -1 : texts->number_of(object, row);
  }
  made.push_back({name, tree::numbers_of(*numbers), texts->texts(), nullptr, 1});
  codes.push_back(std::move(numbers));
}

}  // namespace arbor::python
