// Reads integers from texts, and compares texts, by the rules of the value domains.
//
//   int count = 0;
//   strata::util::string_util::str2int("  42", count);  // 42
#ifndef ARBOR_UTILS_STRING_UTIL_H
#define ARBOR_UTILS_STRING_UTIL_H

namespace strata::util {

class string_util {
 public:
  // Reads a decimal integer from `text`, which is NUL-terminated: spaces (not tabs), an optional
  // sign, digits, and nothing after them. A sign without digits is 0.
  //
  // T is int or unsigned int. An int is -2147483647 to 2147483647 (the least int is refused as too
  // large), an unsigned int 0 to 4294967295, without a "-". Throws std::runtime_error for any other
  // text and for a null pointer, with one of these messages; `result` is unchanged then.
  //
  //   str2int:: cannot convert a NULL string.
  //   <text>: not an int                         nothing but spaces
  //   <text>: _not an int                        another character than a digit
  //   str2int:: a negative number provided.      a "-" where T is unsigned int
  //   str2int:: overflow
  template <class T>
  static void str2int(const char* text, T& result);

  // Compares two NUL-terminated texts, with each character as a signed 8-bit number. Returns a
  // negative number, 0 or a positive one if `a` is less than, equal to or greater than `b`. Bytes
  // of 0x80 and above are negative, so they come before the end of a text, unlike with std::string.
  static int compare_signed(const char* a, const char* b) {
    while (*a == *b && *a != '\0') {
      ++a;
      ++b;
    }
    return static_cast<signed char>(*a) - static_cast<signed char>(*b);
  }
};

}  // namespace strata::util

#endif
