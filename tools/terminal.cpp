#include "tools/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "arbor/csv/shown_text.h"

namespace arbor::tools {

namespace {

// Writes to another buffer, which must outlive it.
class escaping_buffer : public std::streambuf {
 public:
  explicit escaping_buffer(std::streambuf& to) : next(to) {}

 protected:
  int_type overflow(int_type c) override {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char character = traits_type::to_char_type(c);
    return xsputn(&character, 1) == 1 ? c : traits_type::eof();
  }

  std::streamsize xsputn(const char* text, std::streamsize count) override {
    kept.append(text, static_cast<std::size_t>(count));
    return pass_on(longest_character - 1) ? count : 0;
  }

  int sync() override { return pass_on(0) && next.pubsync() == 0 ? 0 : -1; }

 private:
  static constexpr std::size_t longest_character = 4;  // bytes of UTF-8

  // Passes on what is kept, but for at most `rest` bytes at its end, which may be the beginning of
  // a character. Returns whether it could.
  bool pass_on(std::size_t rest) {
    std::string escaped;
    std::string_view text = kept;
    while (!text.empty()) {
      const tree::utf8_character first = tree::first_character(text);
      if (!first.valid && text.size() <= rest) break;
      const std::string_view character = text.substr(0, first.length);
      if (first.is_printable() || first.point == '\n') {
        escaped += character;
      } else {
        escaped += tree::printable(character);
      }
      text.remove_prefix(first.length);
    }
    kept = text;
    const auto size = static_cast<std::streamsize>(escaped.size());
    return next.sputn(escaped.data(), size) == size;
  }

  std::streambuf& next;
  std::string kept;
};

}  // namespace

std::size_t text_width() {
  constexpr std::size_t usual = 60;
  constexpr std::size_t least = 20;  // in a narrower window, lines may as well be broken
  constexpr std::size_t most = 1000;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usual;
  return std::clamp<std::size_t>(size.ws_col, least, most);
}

bool prints_to_terminal() {
  return isatty(STDOUT_FILENO) == 1;
}

terminal_guard::terminal_guard(std::ostream& guarded, bool is_terminal)
    : stream(guarded), unguarded(guarded.rdbuf()) {
  if (!is_terminal) return;
  escaping = std::make_unique<escaping_buffer>(*unguarded);
  stream.rdbuf(escaping.get());
}

terminal_guard::~terminal_guard() {
  if (escaping == nullptr) return;
  try {
    escaping->pubsync();
  } catch (...) {  // of a stream that has failed, and whose user knows
  }
  stream.rdbuf(unguarded);
}

}  // namespace arbor::tools
