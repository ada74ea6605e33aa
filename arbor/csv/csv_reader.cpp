// Two readers take turns, line by line. The parser of libcsv knows quotes; but it looks at each
// byte in turn, calls a function for it, and would take most of the time of loading. Plain lines,
// which most tables consist of, are therefore taken apart by the builder, eight bytes at a time.
// The parser gets a line that is not plain, and those after it until a row has ended with its line:
// then both stand at the beginning of a row, and which of them goes on is all the same.

#include "arbor/csv/csv_reader.h"

#include <csv.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "arbor/csv/csv_row_builder.h"

namespace arbor::tree {

namespace {

// The parser is written in C: an exception must not cross it. It is kept here until the parser has
// returned.
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
    if (csv_init(&state, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL | CSV_REPALL_NL) != 0)
      throw std::bad_alloc();
    csv_set_space_func(&state, keep_blanks);
    csv_set_blk_size(&state, cell_step);
  }
  ~csv_parse_state() { csv_free(&state); }
  csv_parse_state(const csv_parse_state&) = delete;
  csv_parse_state& operator=(const csv_parse_state&) = delete;

  void parse(const char* bytes, std::size_t count, guarded_builder& to) {
    const bool whole = csv_parse(&state, bytes, count, on_cell, on_line_end, &to) == count;
    check(whole, to,
          "a quote inside a cell, or one that was not closed; quote whole cells and double the "
          "quotes in them");
  }

  // Parses an LF. Returns whether it ended a line, as it does outside quotes.
  bool parse_newline(guarded_builder& to) {
    const unsigned long long ended = to.builder.ended_lines();
    parse("\n", 1, to);
    return to.builder.ended_lines() > ended;
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

  // By how many bytes the buffer of a cell grows. The parser's own step of 128 bytes moves a long
  // cell very often.
  static constexpr std::size_t cell_step = 1U << 18U;

  csv_parser state{};
};

class csv_reading {
 public:
  csv_reading(input_file& source, const std::function<void(const csv_row&)>& use)
      : file(source), guarded{{source.name(), use}, nullptr} {}

  void run() {
    constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    std::size_t kept = 0;  // the beginning of a line, left over from the bytes before
    bool at_start = true;
    while (const std::size_t count = file.read(buffer.data() + kept, capacity - kept)) {
      char* next = buffer.data();
      char* const end = next + kept + count;
      if (at_start &&
          std::string_view(next, count).substr(0, byte_order_mark.size()) == byte_order_mark) {
        next += byte_order_mark.size();
      }
      at_start = false;
      next = take(next, end);
      kept = static_cast<std::size_t>(end - next);
      std::memmove(buffer.data(), next, kept);
    }
    parser.parse(buffer.data(), kept, guarded);
    parser.finish(guarded);
  }

 private:
  static constexpr std::size_t capacity = 1U << 16U;

  // Returns the beginning of the first line that is incomplete, with which there is room for more
  // bytes.
  char* take(char* next, char* end) {
    while (next < end) {
      if (at_row)
        next += guarded.builder.take_plain_lines(next, static_cast<std::size_t>(end - next));
      auto* newline =
          static_cast<char*>(std::memchr(next, '\n', static_cast<std::size_t>(end - next)));
      const bool fills_buffer = next == buffer.data() && end == next + capacity;
      if (newline == nullptr && at_row && !fills_buffer) return next;
      char* const stop = newline == nullptr ? end : newline;
      parser.parse(next, static_cast<std::size_t>(stop - next), guarded);
      at_row = newline != nullptr && parser.parse_newline(guarded);
      next = newline == nullptr ? end : newline + 1;
    }
    return end;
  }

  input_file& file;
  guarded_builder guarded;
  csv_parse_state parser;
  std::vector<char> buffer = std::vector<char>(capacity + readable_behind_cell);
  bool at_row = true;  // whether a row begins here, or an empty line
};

}  // namespace

void read_csv(input_file& file, const std::function<void(const csv_row&)>& use) {
  csv_reading(file, use).run();
}

}  // namespace arbor::tree
