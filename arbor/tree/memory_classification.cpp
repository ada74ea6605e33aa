#include "arbor/tree/memory_classification.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "arbor/csv/shown_text.h"
#include "arbor/table/cells/memory_cells.h"
#include "arbor/table/cells/number_reading.h"
#include "arbor/table/thread_pool.h"
#include "arbor/tree/predictor.h"
#include "arbor/tree/text_classifier.h"

namespace arbor::tree {

namespace {

// The values of an attribute. A copy can be used by another thread.
class memory_values {
 public:
  memory_values(const impls::column& of, const memory_column& in)
      : is_continuous(of.is_continuous()), column(&in), read(of) {
    if (!column->texts) return;
    values.reserve(column->texts->size());
    for (const std::string& text : *column->texts) {
      const std::optional<std::string> cell = known_cell(text);
      values.push_back(cell ? value_of_text(*cell) : unknown_value);
    }
  }

  // Writes the values of rows from `first` to before `end`, `step` places apart.
  void write(std::size_t first, std::size_t end, double* to, std::size_t step) {
    with_numbers(column->numbers, [&](auto number_of) {
      for (std::size_t row = first; row < end; ++row, to += step)
        *to = column->is_unknown(row) ? unknown_value : value(number_of(row));
    });
  }

 private:
  std::optional<std::string> known_cell(const std::string& text) const {
    try {
      return cell_of(text);
    } catch (const std::runtime_error& refusal) {
      throw std::runtime_error("column " + in_quotes(column->name) + ": " + refusal.what());
    }
  }

  double value_of_text(const std::string& text) { return read(copy.of(text)); }

  template <class Number>
  double value(Number number) {
    if (column->texts) {
      const auto place = static_cast<std::size_t>(number);
      return place < values.size() ? values[place] : unknown_value;
    }
    if constexpr (std::is_floating_point_v<Number>) {
      if (std::isnan(number)) return unknown_value;
    }
    const plain_number plain = plain_number_in(number, digits);
    if (is_continuous && plain != no_plain_number) return read.number(plain);
    return value_of_text(file_text(number));
  }

  bool is_continuous;
  const memory_column* column;
  value_reader read;
  std::vector<double> values;  // by text
  shortest_digits digits;
  readable_copy copy;
};

// What a thread needs to classify rows.
struct memory_classifier {
  std::vector<memory_values> attributes;
  predictor predict;
  std::vector<double> values{};  // of some rows, one row after the other

  void classify(std::size_t first, std::size_t end, unsigned int* classes, double* probabilities) {
    const std::size_t width = attributes.size();
    values.resize((end - first) * width);
    for (std::size_t i = 0; i < width; ++i) attributes[i].write(first, end, &values[i], width);
    for (std::size_t row = first; row < end; ++row) {
      const double* const of_row = values.data() + (row - first) * width;
      const std::vector<double>& distribution =
          predict([&](unsigned int attribute) { return of_row[attribute]; }).distribution;
      classes[row] = static_cast<unsigned int>(likeliest_class(distribution));
      if (probabilities != nullptr) {
        std::copy(distribution.begin(), distribution.end(),
                  probabilities + row * distribution.size());
      }
    }
  }
};

}  // namespace

void classify_columns(const decision_tree& tree, const std::vector<const memory_column*>& columns,
                      std::size_t rows, const memory_classification_options& options,
                      unsigned int* classes, double* probabilities) {
  constexpr std::size_t rows_at_once = 1U << 12U;
  memory_classifier first{{},
                          predictor(std::make_shared<class_probabilities>(
                              tree, threshold_numbers(tree), options.estimate))};
  for (std::size_t i = 0; i < columns.size(); ++i)
    first.attributes.emplace_back(*tree.attributes[i], *columns[i]);
  const std::size_t blocks = (rows + rows_at_once - 1) / rows_at_once;
  thread_pool pool(static_cast<unsigned int>(
      std::clamp<std::size_t>(options.threads == 0 ? machine_threads() : options.threads, 1,
                              std::max<std::size_t>(blocks, 1))));
  std::atomic<std::size_t> next{0};
  pool.for_each(pool.size(), [&](std::size_t) {
    memory_classifier own = first;
    for (std::size_t block = next++; block < blocks; block = next++) {
      if (options.check) options.check();
      own.classify(block * rows_at_once, std::min(rows, (block + 1) * rows_at_once), classes,
                   probabilities);
    }
  });
}

}  // namespace arbor::tree
