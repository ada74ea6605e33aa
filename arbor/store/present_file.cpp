#include "arbor/store/present_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "arbor/store/model_store.h"
#include "arbor/table/column_types.h"
#include "arbor/tree/table_classification.h"

namespace arbor::tree {

namespace {

namespace fs = std::filesystem;

constexpr int most_links = 40;  // as many as the system follows

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// Whether a column has that name, whatever delimiter stands before it.
bool names_prediction(std::string_view beginning) {
  const std::string_view names = beginning.substr(0, beginning.find('\n'));
  const std::size_t at = names.find(predicted_column);
  return at != names.npos && at > 0 && std::isalnum(static_cast<unsigned char>(names[at - 1])) == 0;
}

}  // namespace

bool is_same_file(const std::string& path, const std::string& input) {
  struct stat one {};
  struct stat other {};
  if (stat(path.c_str(), &one) != 0) return false;
  const int found = input == "-" ? fstat(STDIN_FILENO, &other) : stat(input.c_str(), &other);
  return found == 0 && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

std::string followed(const std::string& path) {
  fs::path file = path;
  std::error_code no_link;
  for (int links = 0; links < most_links && !is_open_descriptor(file); ++links) {
    const fs::path linked = fs::read_symlink(file, no_link);
    if (no_link) break;
    file = file.parent_path() / linked;  // an absolute one is taken as it is
  }
  return file;
}

bool is_open_descriptor(const std::string& followed_path) {
  std::error_code missing;
  const fs::path descriptors = fs::canonical("/proc/self/fd", missing);
  if (missing) return false;
  const fs::path folder = fs::path(followed_path).parent_path() / ".";
  return fs::canonical(folder, missing) == descriptors;
}

bool is_terminal(const std::string& path) {
  struct stat present {};
  if (stat(path.c_str(), &present) != 0 || !S_ISCHR(present.st_mode)) return false;
  const int device = open(path.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (device < 0) return false;
  const bool result = isatty(device) == 1;
  close(device);
  return result;
}

bool is_standard_output(const std::string& path) {
  const fs::path file = followed(path);
  return path == "-" || (is_open_descriptor(file) && file.filename() == "1");
}

file_content content_of(const std::string& path) {
  struct stat present {};
  // Opening anything but a regular file might wait for ever.
  if (stat(path.c_str(), &present) != 0 || !S_ISREG(present.st_mode)) return file_content::none;
  std::ifstream file(path, std::ios::binary);
  if (!file) return file_content::other;
  std::string beginning(std::size_t{1} << 16U, '\0');
  file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
  beginning.resize(static_cast<std::size_t>(file.gcount()));
  if (beginning.empty()) return file_content::empty;
  if (begins_like_model(beginning)) return file_content::model;
  const bool is_svg = begins_with(beginning, "<?xml") || begins_with(beginning, "<svg");
  if (is_svg) return file_content::svg;
  if (begins_with(beginning, page_beginning)) return file_content::page;
  if (begins_with(beginning, types_beginning)) return file_content::types;
  return names_prediction(beginning) ? file_content::classified : file_content::other;
}

}  // namespace arbor::tree
