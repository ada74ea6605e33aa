// Text helpers of the value domains.
//
//   int count = 0;
//   strata::util::string_util::str2int("  42", count);  // 42
#ifndef ARBOR_UTILS_STRING_UTIL_H
#define ARBOR_UTILS_STRING_UTIL_H

namespace strata::util {

class string_util {
 public:
  // Parses a decimal integer: blanks (spaces, not tabs), an optional sign, digits, and then the end
  // of the text.
  //
  // T is int or unsigned int. An int lies between -2147483647 and 2147483647 (the least int itself
  // overflows), an unsigned int between 0 and 4294967295 and has no "-". A sign without digits is
  // 0. Throws std::runtime_error, with `result` unchanged, for a null pointer and for every other
  // text; the message tells which rule it broke.
  template <class T>
  static void str2int(const char* text, T& result);

  // Compares two NUL-terminated texts character by character, each character taken as a signed
  // 8-bit number: negative, zero or positive as `a` is less than, equal to or greater than `b`.
  // Bytes of 0x80 and above thus come before the end of a text, unlike in the order of std::string.
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
