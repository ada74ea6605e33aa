#include "arbor/store/present_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string_view>

#include "arbor/store/model_store.h"

namespace arbor::tree {

namespace {

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

}  // namespace

bool is_same_file(const std::string& path, const std::string& input) {
  struct stat one {};
  struct stat other {};
  if (stat(path.c_str(), &one) != 0) return false;
  const int found = input == "-" ? fstat(STDIN_FILENO, &other) : stat(input.c_str(), &other);
  return found == 0 && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

file_content content_of(const std::string& path) {
  struct stat present {};
  // Opening anything but a regular file might wait for ever.
  if (stat(path.c_str(), &present) != 0 || !S_ISREG(present.st_mode)) return file_content::none;
  std::ifstream file(path, std::ios::binary);
  if (!file) return file_content::other;
  std::array<char, 16> first{};
  file.read(first.data(), first.size());
  const std::string_view beginning(first.data(), static_cast<std::size_t>(file.gcount()));
  if (beginning.empty()) return file_content::empty;
  if (begins_like_model(beginning)) return file_content::model;
  const bool is_svg = begins_with(beginning, "<?xml") || begins_with(beginning, "<svg");
  return is_svg ? file_content::svg : file_content::other;
}

}  // namespace arbor::tree
