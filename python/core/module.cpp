// The module arbor._core: growing, rating and classifying the columns of a table that Python holds.
// What users see of it is in the package's Python files.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/report/node_text.h"
#include "arbor/report/node_walk.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/model_store.h"
#include "arbor/table/cells/number_reading.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/memory_table.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/attribute_importance.h"
#include "arbor/tree/class_distribution.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/memory_classification.h"
#include "arbor/tree/rating.h"
#include "python/core/columns.h"
#include "python/core/interruption.h"

namespace arbor::python {

namespace py = pybind11;

namespace {

// The text of these bytes. Those that are not UTF-8 become surrogates, as in names of files, from
// which Python makes the same bytes again.
py::str text_of_bytes(const std::string& bytes) {
  PyObject* const text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<py::ssize_t>(bytes.size()), "surrogateescape");
  if (text == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(text);
}

std::vector<py::str> texts_of_bytes(const std::vector<std::string>& all) {
  std::vector<py::str> texts;
  for (const std::string& bytes : all) texts.push_back(text_of_bytes(bytes));
  return texts;
}

// A tree that does not change any more, so that any number of threads may use it.
class model {
 public:
  explicit model(tree::decision_tree grown) : tree(std::move(grown)) {
    // The first question to a domain sorts its values.
    static_cast<void>(tree.class_column->get_o_set()->size_of_known());
    for (const auto& attribute : tree.attributes)
      static_cast<void>(attribute->get_o_set()->size_of_known());
  }

  const tree::decision_tree tree;
};

using kinds_by_name = std::map<std::string, std::string>;
using weights_array = std::optional<py::array_t<float, py::array::c_style>>;

// The last column is the class.
tree::memory_table table_of(const columns& all, const std::string& name,
                            const weights_array& weights) {
  if (all.all().empty()) throw py::value_error("no columns");
  tree::memory_table table{name, all.all(), all.all().size() - 1, nullptr};
  if (weights) {
    if (static_cast<std::size_t>(weights->size()) != table.columns.back().numbers.count)
      throw py::value_error("sample_weight has not one weight for each row");
    table.weights = weights->data();
  }
  return table;
}

tree::memory_options options_of(const kinds_by_name& kinds, unsigned int threads,
                                const std::function<void()>& check) {
  return {kinds, "kinds", threads, check};
}

// By code less 1: the first row that has the class.
std::vector<std::size_t> first_rows(const impls::column& classes) {
  std::vector<std::size_t> rows(classes.get_distinct() - 1ULL);
  std::vector<bool> found(rows.size());
  std::size_t left = rows.size();
  for (unsigned int row = 0; left > 0; ++row) {
    const std::size_t entry = classes.get_row_index(row) - 1ULL;
    if (found[entry]) continue;
    found[entry] = true;
    rows[entry] = row;
    --left;
  }
  return rows;
}

// Of two classes that the table cannot tell apart, each would be the other. `first` has the first
// row of each class by code less 1.
void refuse_lost_classes(const tree::table& table, const tree::memory_column& classes,
                         const std::vector<std::size_t>& first) {
  for (const tree::table_remark& remark : table.remarks) {
    if (remark.loses_numbers && remark.kind == impls::column::CLASS)
      throw tree::table_error(table.name + ": the class: " + remark.text);
  }
  if (!classes.texts || classes.texts->size() == first.size()) return;
  const impls::column& codes = table.class_column();
  tree::with_numbers(classes.numbers, [&](auto number_of) {
    const auto text_of = [&](std::size_t row) {
      return tree::in_quotes((*classes.texts)[static_cast<std::size_t>(number_of(row))]);
    };
    for (unsigned int row = 0; row < classes.numbers.count; ++row) {
      const std::size_t same = first[codes.get_row_index(row) - 1ULL];
      if (number_of(row) == number_of(same)) continue;
      throw tree::table_error(table.name + ": the classes " + text_of(same) + " and " +
                              text_of(row) +
                              " would be one, as blanks and the form of a number "
                              "do not count");
    }
  });
}

py::tuple grow(const columns& all, const std::string& name, const weights_array& weights,
               const kinds_by_name& kinds, float min_weight, unsigned int max_depth, bool prune,
               float confidence, unsigned int threads) {
  const tree::memory_table from = table_of(all, name, weights);
  std::shared_ptr<model> grown;
  std::vector<std::size_t> rows_of_classes;
  std::vector<std::string> remarks;
  run([&](const std::function<void()>& check) {
    const tree::table table = tree::make_table(from, options_of(kinds, threads, check));
    rows_of_classes = first_rows(table.class_column());
    refuse_lost_classes(table, from.columns.back(), rows_of_classes);
    tree::grow_options options;
    options.min_weight = min_weight;
    options.max_depth = max_depth;
    options.prune = prune;
    options.confidence = confidence;
    options.threads = threads;
    options.progress = [&](double /*settled*/) { check(); };
    grown = std::make_shared<model>(tree::grow_tree(table, table.cases, options));
    for (const tree::table_remark& remark : table.remarks) remarks.push_back(remark.text);
  });
  return py::make_tuple(grown, rows_of_classes, remarks);
}

// As comma-separated values.
std::string rate(const columns& all, const std::string& name, const weights_array& weights,
                 const kinds_by_name& kinds, float min_weight, unsigned int threads) {
  const tree::memory_table from = table_of(all, name, weights);
  std::ostringstream out;
  run([&](const std::function<void()>& check) {
    const tree::table table = tree::make_table(from, options_of(kinds, threads, check));
    tree::table_rating ratings = tree::rate_attributes(table, table.cases, min_weight);
    tree::sort_ratings(ratings.attributes, tree::rating_order::ratio);
    tree::write_ratings_csv(out, tree::summary_of(table, table.cases), ratings);
  });
  return out.str();
}

// The entries of the predicted classes and, if wanted, the probabilities of all classes, None if
// not. `places` are those of the attributes among the columns.
py::tuple classify(const model& with, const columns& all, const std::vector<std::size_t>& places,
                   std::size_t rows, bool with_probabilities, unsigned int threads) {
  std::vector<const tree::memory_column*> attributes;
  for (const std::size_t place : places) attributes.push_back(&all.all().at(place));
  if (attributes.size() != with.tree.attributes.size())
    throw py::value_error("not one column for each attribute");
  for (const tree::memory_column* column : attributes) {
    if (column->numbers.count != rows) throw py::value_error("columns of different lengths");
  }
  py::array_t<unsigned int> classes(static_cast<py::ssize_t>(rows));
  py::object probabilities = py::none();
  double* to = nullptr;
  if (with_probabilities) {
    py::array_t<double> made({rows, with.tree.class_count()});
    to = made.mutable_data();
    probabilities = std::move(made);
  }
  unsigned int* const to_classes = classes.mutable_data();
  run([&](const std::function<void()>& check) {
    tree::classify_columns(with.tree, attributes, rows, {{}, threads, check}, to_classes, to);
  });
  return py::make_tuple(classes, probabilities);
}

// What a function writes to a stream, while other threads of Python go on.
template <class Write>
std::string written(Write write) {
  const py::gil_scoped_release release;
  const point_locale with_points;
  std::ostringstream out;
  write(out);
  return out.str();
}

std::string text_of(const model& shown, std::size_t depth, std::size_t width) {
  tree::tree_excerpt excerpt;
  excerpt.depth = depth;
  return written([&](std::ostream& out) { write_tree_text(out, shown.tree, excerpt, width); });
}

// Of the first nodes in the order in which a reader meets them, as many as `most`: the number of
// tests above it, the branch that leads to it, the attribute that it tests ("" for a leaf), and the
// class with its weight.
using shown_node = std::tuple<std::size_t, std::string, std::string, std::string>;
std::vector<shown_node> first_nodes(const model& shown, std::size_t most, std::size_t width) {
  const py::gil_scoped_release release;
  const point_locale with_points;
  const tree::decision_tree& grown = shown.tree;
  const std::size_t depth = tree::excerpt_of_lines(grown, most).depth;
  const std::vector<std::size_t> predicted = tree::predicted_classes(grown);
  tree::column_texts texts = tree::shown_texts(width);
  const std::vector<std::size_t> parents = tree::node_parents(grown);
  std::vector<shown_node> nodes;
  tree::for_each_node(
      grown, std::min<std::size_t>(depth, 30), [&](std::size_t i, std::size_t above) {
        if (nodes.size() == most) return;
        const tree::tree_node& node = grown.nodes[i];
        std::string branch;
        if (i > 0) {
          const tree::tree_node& parent = grown.nodes[parents[i]];
          const impls::column& tested = *grown.attributes[parent.attribute];
          branch = texts.name(tested) + " ";
          branch += tested.is_continuous() ? tree::side_of_threshold(node) +
                                                 (" " + tree::test_threshold(tested, parent))
                                           : "= " + tree::branch_value(texts, tested, node);
        }
        nodes.emplace_back(above, branch,
                           node.is_leaf() ? "" : texts.name(*grown.attributes[node.attribute]),
                           tree::leaf_text(texts, grown, node, predicted[i]));
      });
  return nodes;
}

std::vector<py::str> class_values(const model& of) {
  const point_locale with_points;
  std::vector<std::string> values;
  for (unsigned int code = 1; code <= of.tree.class_count(); ++code)
    values.push_back(tree::value_text(*of.tree.class_column, code));
  return texts_of_bytes(values);
}

std::vector<py::str> attribute_names(const model& of) {
  std::vector<std::string> names;
  for (const auto& attribute : of.tree.attributes) names.push_back(attribute->get_name());
  return texts_of_bytes(names);
}

py::bytes bytes_of(const model& saved) {
  std::vector<unsigned char> bytes;
  {
    const py::gil_scoped_release release;
    const point_locale with_points;
    bytes = tree::model_bytes(saved.tree);
  }
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::shared_ptr<model> model_of(const py::bytes& saved, const std::string& name) {
  const std::string bytes = saved;
  const py::gil_scoped_release release;
  const point_locale with_points;
  return std::make_shared<model>(tree::model_of({bytes.begin(), bytes.end()}, name));
}

// `path` in the encoding of the file system.
void save(const model& saved, const py::bytes& path) {
  static std::mutex one_at_a_time;  // see file_replacement
  const std::string to = path;
  std::string refusal;
  {
    const py::gil_scoped_release release;
    const point_locale with_points;
    const std::lock_guard<std::mutex> lock(one_at_a_time);
    try {
      tree::save_model(to, saved.tree);
      return;
    } catch (const tree::table_error& error) {
      refusal = error.what();
    }
  }
  PyErr_SetObject(PyExc_OSError, text_of_bytes(refusal).ptr());
  throw py::error_already_set();
}

}  // namespace

PYBIND11_MODULE(_core, module) {
  using py::arg;
  module.doc() = "Growing, rating and classifying the columns of a table that Python holds.";

  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const py::builtin_exception& error) {
      error.set_error();
    } catch (const std::runtime_error& error) {
      PyErr_SetObject(PyExc_ValueError, text_of_bytes(error.what()).ptr());
    }
  });

  py::module_::import("atexit").attr("register")(py::cpp_function(&end_all));

  py::class_<columns>(module, "Columns")
      .def(py::init<>())
      .def("add_numbers", &columns::add_numbers, arg("name"), arg("numbers"), arg("unknown"))
      .def("add_texts", &columns::add_texts, arg("name"), arg("numbers"), arg("texts"))
      .def("add_objects", &columns::add_objects, arg("name"), arg("objects"), arg("unknowns"),
           arg("is_scalar"));

  py::class_<model, std::shared_ptr<model>>(module, "Model")
      .def_static("from_bytes", &model_of, arg("saved"), arg("name"))
      .def("to_bytes", &bytes_of)
      .def(py::pickle(&bytes_of,
                      [](const py::bytes& saved) { return model_of(saved, "the pickled tree"); }))
      .def("save", &save, arg("path"))
      .def("text", &text_of, arg("depth"), arg("width"))
      .def(
          "to_graphviz",
          [](const model& shown, std::size_t depth) {
            return written([&](std::ostream& out) { write_tree_dot(out, shown.tree, depth); });
          },
          arg("depth"))
      .def("to_json",
           [](const model& shown) {
             return written([&](std::ostream& out) { write_tree_json(out, shown.tree); });
           })
      .def("description", [](const model& shown,
                             std::size_t width) { return tree::description(shown.tree, width); })
      .def("first_nodes", &first_nodes, arg("most"), arg("width"))
      .def("size",
           [](const model& of) {
             const tree::tree_size size = tree::size_of(of.tree);
             return std::make_tuple(size.nodes, size.leaves, size.depth);
           })
      .def("class_name",
           [](const model& of) { return text_of_bytes(of.tree.class_column->get_name()); })
      .def("class_type", [](const model& of) { return tree::data_type_of(*of.tree.class_column); })
      .def("class_values", &class_values)
      .def("attribute_names", &attribute_names)
      .def("importance", [](const model& of) { return tree::importance_of_attributes(of.tree); });

  module.def("grow", &grow, arg("columns"), arg("name"), arg("weights"), arg("kinds"),
             arg("min_weight"), arg("max_depth"), arg("prune"), arg("confidence"), arg("threads"));
  module.def("rate", &rate, arg("columns"), arg("name"), arg("weights"), arg("kinds"),
             arg("min_weight"), arg("threads"));
  module.def("classify", &classify, arg("model"), arg("columns"), arg("places"), arg("rows"),
             arg("with_probabilities"), arg("threads"));
}

}  // namespace arbor::python
