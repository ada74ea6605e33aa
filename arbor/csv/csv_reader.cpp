// Two readers take turns, line by line. The parser of libcsv knows quotes; but it looks at each
// byte in turn, calls a function for it, and would take most of the time of loading. Plain lines,
// which most tables consist of, are therefore divided eight bytes at a time. The parser gets a line
// that is not plain, and the lines after it until one of them ends outside of quotes: then both
// readers stand at the beginning of a row, and either can go on.

#include "arbor/csv/csv_reader.h"

#include <cstring>
#include <string_view>

#include "arbor/csv/plain_lines.h"
#include "arbor/csv/quoted_lines.h"
#include "arbor/csv/row_delivery.h"

namespace arbor::tree {

namespace {

class csv_reading {
 public:
  csv_reading(input_file& source, const std::function<void(const csv_row&)>& use)
      : file(source), rows(source.name(), use) {}

  void run() {
    std::size_t kept = 0;  // the beginning of a line, left over from the bytes before
    bool at_start = true;
    while (const std::size_t count = file.read(buffer.data() + kept, capacity - kept)) {
      char* next = buffer.data();
      char* const end = next + kept + count;
      if (at_start) next += length_of_mark({next, count});
      at_start = false;
      next = take(next, end);
      kept = static_cast<std::size_t>(end - next);
      std::memmove(buffer.data(), next, kept);
    }
    quoted.take(buffer.data(), kept);
    quoted.finish();
  }

 private:
  static constexpr std::size_t capacity = 1U << 16U;

  static std::size_t length_of_mark(std::string_view beginning) {
    constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    return beginning.substr(0, byte_order_mark.size()) == byte_order_mark ? byte_order_mark.size()
                                                                          : 0;
  }

  // Returns the beginning of a last line that is incomplete and may be kept until more bytes have
  // been read, or `end`.
  char* take(char* next, char* end) {
    while (next < end) {
      if (at_row) next += plain.take(next, static_cast<std::size_t>(end - next));
      const auto left = static_cast<std::size_t>(end - next);
      auto* const newline = static_cast<char*>(std::memchr(next, '\n', left));
      const bool fills_buffer = left == capacity;
      if (newline == nullptr && at_row && !fills_buffer) return next;
      char* const stop = newline == nullptr ? end : newline;
      quoted.take(next, static_cast<std::size_t>(stop - next));
      at_row = newline != nullptr && quoted.take_newline();
      next = newline == nullptr ? end : newline + 1;
    }
    return end;
  }

  input_file& file;
  row_delivery rows;
  plain_lines plain{rows};
  quoted_lines quoted{rows};
  std::vector<char> buffer = std::vector<char>(capacity + readable_after_cell);
  bool at_row = true;  // whether a row begins here, or an empty line
};

}  // namespace

void read_csv(input_file& file, const std::function<void(const csv_row&)>& use) {
  csv_reading(file, use).run();
}

}  // namespace arbor::tree
