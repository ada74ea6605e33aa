#include "arbor/csv/quoted_lines.h"

#include <new>

namespace arbor::tree {

namespace {

// By how many bytes the parser's buffer of a cell grows. Its own step of 128 bytes moves a long
// cell very often.
constexpr std::size_t cell_step = 1U << 18U;

// What the parser leaves out around a cell. It tells the function nothing but the character, so
// there is one for each form.
template <bool space, bool tab>
int is_left_out(unsigned char c) {
  return ((space && c == ' ') || (tab && c == '\t')) ? 1 : 0;
}

auto left_out_in(const csv_form& form) {
  if (form.is_blank(' '))
    return form.is_blank('\t') ? is_left_out<true, true> : is_left_out<true, false>;
  return form.is_blank('\t') ? is_left_out<false, true> : is_left_out<false, false>;
}

}  // namespace

quoted_lines::quoted_lines(row_division& to) : rows(to) {
  if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL | CSV_REPALL_NL) != 0)
    throw std::bad_alloc();
  csv_set_delim(&parser, static_cast<unsigned char>(to.form().delimiter));
  csv_set_space_func(&parser, left_out_in(to.form()));
  csv_set_blk_size(&parser, cell_step);
}

void quoted_lines::take(const char* bytes, std::size_t count) {
  // A CR and an LF with blanks between them end two lines.
  const bool ends_in_cr = count == 0 || bytes[count - 1] == CSV_CR;
  const bool whole = csv_parse(&parser, bytes, count, on_cell, on_line_end, this) == count;
  check(whole,
        "a quote inside a cell, or one that was not closed; quote whole cells and double the "
        "quotes in them");
  if (!ends_in_cr) after_cr = false;
}

bool quoted_lines::take_newline() {
  line_ended = false;
  take("\n", 1);
  return line_ended;
}

void quoted_lines::finish() {
  check(csv_fini(&parser, on_cell, on_line_end, this) == 0, "a quote that is never closed");
}

void quoted_lines::on_cell(void* text, std::size_t length, void* lines) {
  auto* const self = static_cast<quoted_lines*>(lines);
  self->run([&] {
    self->rows.add_cell(static_cast<const char*>(text), length);
    self->after_cr = false;
  });
}

void quoted_lines::on_line_end(int terminator, void* lines) {
  auto* const self = static_cast<quoted_lines*>(lines);
  self->run([&] { self->end_line(terminator); });
}

// `terminator` is CR, LF or, at the end of a file without one, -1. A CRLF comes as two of them, and
// an empty line as one without cells.
void quoted_lines::end_line(int terminator) {
  line_ended = true;
  const bool ends_crlf = terminator == CSV_LF && after_cr;
  after_cr = terminator == CSV_CR;
  if (ends_crlf) return;
  rows.end_line();
}

// The parser is written in C, so that no exception may leave a function that it calls: it is kept
// until the parser has returned.
template <class Step>
void quoted_lines::run(Step step) noexcept {
  if (thrown) return;
  try {
    step();
  } catch (...) {
    thrown = std::current_exception();
  }
}

void quoted_lines::check(bool done, const char* complaint) {
  if (thrown) std::rethrow_exception(thrown);
  if (done) return;
  if (csv_error(&parser) != CSV_EPARSE) throw std::bad_alloc();
  rows.fail(complaint);
}

}  // namespace arbor::tree
