#include "arbor/formats/open_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "arbor/csv/input_file.h"
#include "arbor/csv/table_error.h"
#include "arbor/formats/gzip_source.h"
#include "arbor/formats/read_ahead.h"
#include "arbor/formats/zstd_source.h"

namespace arbor::tree {

namespace {

using namespace std::string_view_literals;

// A source whose first bytes can be seen before they are read.
class begun_source : public byte_source {
 public:
  explicit begun_source(std::unique_ptr<byte_source> of)
      : source(std::move(of)), size(source->read(first.data(), first.size())) {}

  bool begins_with(std::string_view text) const {
    return std::string_view(first.data(), size).substr(0, text.size()) == text;
  }

  std::size_t read(char* buffer, std::size_t wanted) override {
    const std::size_t count = std::min(wanted, size - given);
    std::memcpy(buffer, first.data() + given, count);
    given += count;
    return count == wanted ? count : count + source->read(buffer + count, wanted - count);
  }
  unsigned long long bytes_of_file() const override { return source->bytes_of_file(); }
  std::optional<std::uint64_t> plain_size() const override { return source->plain_size(); }
  const std::string& name() const override { return source->name(); }

 private:
  std::unique_ptr<byte_source> source;
  std::array<char, 16> first{};
  std::size_t size;
  std::size_t given = 0;
};

constexpr std::string_view gzip_begin = "\x1F\x8B";
constexpr std::string_view zstd_begin = "\x28\xB5\x2F\xFD";

// A skippable frame may come first; its first byte has 16 values.
bool is_zstd(const begun_source& file) {
  if (file.begins_with(zstd_begin)) return true;
  for (char c = '\x50'; c <= '\x5F'; ++c) {
    if (file.begins_with(std::string(1, c) + "\x2A\x4D\x18")) return true;
  }
  return false;
}

struct other_format {
  std::string_view begin;
  const char* advice;
};

const std::array<other_format, 10> other_formats{{
    {"PK\x03\x04"sv, "a zip archive, as .xlsx workbooks are; save the table as CSV"},
    {"PK\x05\x06"sv, "an empty zip archive; save the table as CSV"},
    {"\xD0\xCF\x11\xE0"sv,
     "a document of an office program, as .xls workbooks are; save the table as CSV"},
    {"PAR1\x15"sv, "a Parquet file; save the table as CSV"},
    {"\xFD"
     "7zXZ\0"sv,
     "compressed with xz; decompress it, or compress it with gzip or zstd"},
    {"BZh91AY&SY"sv, "compressed with bzip2; decompress it, or compress it with gzip or zstd"},
    {"\xFE\xFF"sv, "text in UTF-16; save it as UTF-8"},
    {"\xFF\xFE"sv, "text in UTF-16; save it as UTF-8"},
    {gzip_begin, "compressed twice; decompress it once"},
    {zstd_begin, "compressed twice; decompress it once"},
}};

}  // namespace

std::unique_ptr<byte_source> open_file(const std::string& path, const expansion_limit& limit) {
  auto file = std::make_unique<begun_source>(std::make_unique<input_file>(path));
  std::unique_ptr<byte_source> text;
  if (file->begins_with(gzip_begin)) {
    text = std::make_unique<gzip_source>(std::move(file), limit);
  } else if (is_zstd(*file)) {
    text = std::make_unique<zstd_source>(std::move(file), limit);
  }
  if (text != nullptr)
    file = std::make_unique<begun_source>(std::make_unique<read_ahead>(std::move(text)));
  for (const auto& [begin, advice] : other_formats) {
    if (file->begins_with(begin)) throw table_error(file->name() + ": " + advice);
  }
  return file;
}

}  // namespace arbor::tree
