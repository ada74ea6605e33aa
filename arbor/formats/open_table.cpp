#include "arbor/formats/open_table.h"

#include <cctype>
#include <filesystem>
#include <memory>
#include <string_view>
#include <utility>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/formats/arff_source.h"
#include "arbor/formats/names_file.h"
#include "arbor/formats/names_source.h"
#include "arbor/formats/open_file.h"
#include "arbor/formats/read_ahead.h"

namespace arbor::tree {

namespace {

bool exists(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

// Removes an ending of a path, in any case, if it has it.
bool remove_ending(std::string& path, std::string_view ending) {
  if (path.size() <= ending.size()) return false;
  const std::size_t begin = path.size() - ending.size();
  for (std::size_t i = 0; i < ending.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(path[begin + i])) != ending[i]) return false;
  }
  path.resize(begin);
  return true;
}

std::string without_compression(std::string path) {
  if (!remove_ending(path, ".gz")) remove_ending(path, ".zst");
  return path;
}

// The file of the rows and that which declares their columns.
struct names_pair {
  std::string rows;
  std::string names;
};

names_pair pair_of(const std::string& path) {
  std::string stem = without_compression(path);
  const bool has_rows = remove_ending(stem, ".data") || remove_ending(stem, ".test");
  if (has_rows) return {path, stem + ".names"};
  if (!remove_ending(stem, ".names") && exists(path)) {
    const std::filesystem::path rows = stem;
    return {path, std::filesystem::path(rows).replace_extension(".names")};
  }
  std::string rows = stem + ".data";
  for (const char* ending : {".gz", ".zst"}) {
    if (!exists(rows) && exists(rows + ending)) rows += ending;
  }
  return {rows, stem + ".names"};
}

std::string format_of(const std::string& path) {
  std::string stem = without_compression(path);
  if (remove_ending(stem, ".arff")) return "arff";
  if (remove_ending(stem, ".names")) return "names";
  const bool has_rows = remove_ending(stem, ".data") || remove_ending(stem, ".test");
  return has_rows && exists(stem + ".names") ? "names" : "csv";
}

table_file open_names(const std::string& path, const input_options& options) {
  if (path == "-")
    throw table_error("standard input has no file of names beside it; name the file of the rows");
  const names_pair paths = pair_of(path);
  const std::unique_ptr<byte_source> names = open_file(paths.names, options.limit);
  declared_table declared;
  try {
    declared = read_names_file(*names);
  } catch (const table_error& error) {
    if (!options.format.empty()) throw;
    throw table_error(std::string(error.what()) +
                      "; if it describes the rows in words only, read " + printable(paths.rows) +
                      " in the format csv");
  }
  auto rows =
      std::make_unique<names_source>(open_file(paths.rows, options.limit), declared.columns.size());
  return {std::make_unique<read_ahead>(std::move(rows)), std::move(declared)};
}

table_file open_arff(const std::string& path, const input_options& options) {
  auto rows = std::make_unique<arff_source>(open_file(path, options.limit), options.limit);
  declared_table declared = rows->declared();
  return {std::make_unique<read_ahead>(std::move(rows)), std::move(declared)};
}

}  // namespace

table_file open_table_file(const std::string& path, const input_options& options) {
  const std::string format = options.format.empty() ? format_of(path) : options.format;
  if (format == "arff") return open_arff(path, options);
  if (format == "names") return open_names(path, options);
  return {open_file(path, options.limit), std::nullopt};
}

}  // namespace arbor::tree
