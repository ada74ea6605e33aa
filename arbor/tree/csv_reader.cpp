#include "arbor/tree/csv_reader.h"

#include <csv.h>
#include <fmt/format.h>

#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "arbor/tree/table_error.h"

namespace arbor::tree {

namespace {

// LF, CRLF and a lone CR each end a line.
unsigned long long newlines(std::string_view text) {
  unsigned long long count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) ++count;
  }
  return count;
}

}  // namespace

unsigned long long csv_row::line_of(std::size_t cell) const {
  return first_line + newlines(std::string_view(characters).substr(0, starts[cell]));
}

// Collects what the parser reports, cell by cell and line end by line end, into rows.
class csv_row_builder {
 public:
  csv_row_builder(const input_file& file, const std::function<void(const csv_row&)>& use_row)
      : name(file.name()), use(use_row) {}

  // `text` is null for an empty cell without quotes.
  void add_cell(const char* text, std::size_t length) {
    if (row.starts.empty()) begin_row();
    const std::string_view cell(text == nullptr ? "" : text, length);
    if (cell.find('\0') != std::string_view::npos) {
      fail("a zero byte in the text; a table is text in UTF-8 or another encoding that has none");
    }
    row.starts.push_back(row.characters.size());
    row.empty.push_back(text == nullptr);
    row.characters.append(cell);
    row.characters += '\0';
    line += newlines(cell);
    after_cr = false;
  }

  // `terminator` is CR, LF or, at the end of a file without one, -1. It is told for every line end outside quotes, so
  // that CRLF comes as two of them, and an empty line as one without cells.
  void end_line(int terminator) {
    const bool second_half = terminator == CSV_LF && after_cr;
    after_cr = terminator == CSV_CR;
    if (second_half) return;
    if (row.starts.empty()) {
      if (empty_line == 0) empty_line = line;
    } else {
      use(row);
      row.characters.clear();
      row.starts.clear();
      row.empty.clear();
    }
    ++line;
  }

  [[noreturn]] void fail(const std::string& what) const {
    throw table_error(fmt::format("{}:{}: {}", name, line, what));
  }

 private:
  void begin_row() {
    row.first_line = line;
    if (empty_line == 0) return;
    line = empty_line;
    fail("an empty line; only the end of a table may have some");
  }

  const std::string& name;
  const std::function<void(const csv_row&)>& use;
  csv_row row;
  unsigned long long line = 1;        // where the next cell begins
  unsigned long long empty_line = 0;  // the first of those since the last row
  bool after_cr = false;
};

namespace {

// The parser is written in C: an exception must not cross it. It is kept here until the parser has returned.
struct guarded_builder {
  csv_row_builder builder;
  std::exception_ptr thrown;

  template <class Step>
  void run(Step step) noexcept {
    if (thrown) return;
    try {
      step();
    } catch (...) {
      thrown = std::current_exception();
    }
  }
};

void on_cell(void* text, std::size_t length, void* data) {
  auto* guarded = static_cast<guarded_builder*>(data);
  guarded->run([&] { guarded->builder.add_cell(static_cast<const char*>(text), length); });
}

void on_line_end(int terminator, void* data) {
  auto* guarded = static_cast<guarded_builder*>(data);
  guarded->run([&] { guarded->builder.end_line(terminator); });
}

int keep_blanks(unsigned char /*character*/) {
  return 0;
}

class csv_parse_state {
 public:
  csv_parse_state() {
    if (csv_init(&state, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL | CSV_REPALL_NL) != 0) throw std::bad_alloc();
    csv_set_space_func(&state, keep_blanks);
  }
  ~csv_parse_state() { csv_free(&state); }
  csv_parse_state(const csv_parse_state&) = delete;
  csv_parse_state& operator=(const csv_parse_state&) = delete;

  void parse(const char* bytes, std::size_t count, guarded_builder& to) {
    const bool whole = csv_parse(&state, bytes, count, on_cell, on_line_end, &to) == count;
    check(whole, to,
          "a quote inside a cell, or one that was not closed; quote whole cells and double the quotes in them");
  }

  void finish(guarded_builder& to) {
    check(csv_fini(&state, on_cell, on_line_end, &to) == 0, to, "a quote that is never closed");
  }

 private:
  void check(bool done, guarded_builder& to, const char* complaint) {
    if (to.thrown) std::rethrow_exception(to.thrown);
    if (done) return;
    if (csv_error(&state) != CSV_EPARSE) throw std::bad_alloc();
    to.builder.fail(complaint);
  }

  csv_parser state{};
};

}  // namespace

void read_csv(input_file& file, const std::function<void(const csv_row&)>& use) {
  constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
  csv_parse_state parser;
  guarded_builder guarded{{file, use}, nullptr};
  std::array<char, 1U << 16U> buffer{};
  bool at_start = true;
  while (const std::size_t count = file.read(buffer.data(), buffer.size())) {
    std::string_view bytes(buffer.data(), count);
    if (at_start && bytes.substr(0, byte_order_mark.size()) == byte_order_mark) {
      bytes.remove_prefix(byte_order_mark.size());
    }
    at_start = false;
    parser.parse(bytes.data(), bytes.size(), guarded);
  }
  parser.finish(guarded);
}

}  // namespace arbor::tree
