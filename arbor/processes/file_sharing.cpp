#include "arbor/processes/file_sharing.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "arbor/csv/row_search.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/processes/agreement.h"

namespace arbor::tree {

namespace {

// How many bytes each file has, as far as that is known.
std::vector<std::uint64_t> sizes_of(const std::vector<std::string>& paths) {
  std::vector<std::uint64_t> sizes;
  for (const std::string& path : paths) {
    std::error_code unknown;
    const std::uint64_t size = std::filesystem::file_size(path, unknown);
    sizes.push_back(unknown ? 0 : size);
  }
  return sizes;
}

// The same if all files can be divided; empty otherwise. What is wrong with a file is found when
// the rows before it have been read.
std::vector<std::uint64_t> divisible_sizes(const csv_table& file) {
  std::vector<std::uint64_t> sizes;
  for (std::size_t i = 0; i < file.paths().size(); ++i) {
    try {
      const std::optional<std::uint64_t> size = file.divisible_size(i);
      if (!size) return {};
      sizes.push_back(*size);
    } catch (const table_error&) {
      return {};
    }
  }
  return sizes;
}

std::uint64_t sum_of(const std::vector<std::uint64_t>& sizes) {
  std::uint64_t sum = 0;
  for (const std::uint64_t size : sizes) sum += size;
  return sum;
}

// A file goes to the process in whose equal share of all bytes its middle is.
std::vector<file_part> own_files(const process_group& group,
                                 const std::vector<std::uint64_t>& sizes) {
  const double all = static_cast<double>(std::max<std::uint64_t>(sum_of(sizes), 1));
  std::vector<file_part> own;
  double before = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const auto size = static_cast<double>(sizes[i]);
    const auto owner = static_cast<unsigned int>((before + size / 2) / all * group.size());
    if (std::min(owner, group.size() - 1) == group.rank()) own.push_back({i, std::nullopt});
    before += size;
  }
  return own;
}

// A range of the bytes of a file.
struct file_range {
  std::size_t file;
  std::uint64_t first;
  std::uint64_t end;
};

// Those of a process, in the order of the files. Empty files have none.
std::vector<file_range> ranges_of(unsigned int process, unsigned int processes,
                                  const std::vector<std::uint64_t>& sizes) {
  const std::uint64_t all = sum_of(sizes);
  const auto share_begin = [&](std::uint64_t p) {
    return all / processes * p + all % processes * p / processes;
  };
  const std::uint64_t first = share_begin(process);
  const std::uint64_t end = share_begin(process + 1ULL);
  std::vector<file_range> ranges;
  std::uint64_t before = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const std::uint64_t from = std::max(first, before);
    const std::uint64_t to = std::min(end, before + sizes[i]);
    if (from < to) ranges.push_back({i, from - before, to - before});
    before += sizes[i];
  }
  return ranges;
}

// Where the part of a range begins: with the first row that begins in it. None if no row does.
std::optional<file_place> part_begin(const csv_table& file, const file_range& range,
                                     const file_place& place, std::uint64_t size) {
  if (range.first == 0) return place;
  const std::string& path = file.paths()[range.file];
  const file_place first = first_row(path, size, file.row_form(), file.has_names());
  if (range.first < first.byte) return first;
  return next_row(path, place, range.end, file.row_form());
}

std::vector<file_part> own_file_parts(process_group& group, const csv_table& file,
                                      const std::vector<std::uint64_t>& sizes) {
  std::vector<file_range> ranges;  // of all processes
  std::size_t own_first = 0;
  std::size_t own_end = 0;
  for (unsigned int p = 0; p < group.size(); ++p) {
    if (p == group.rank()) own_first = ranges.size();
    for (const file_range& range : ranges_of(p, group.size(), sizes)) ranges.push_back(range);
    if (p == group.rank()) own_end = ranges.size();
  }

  const std::vector<range_counts> counts = group.gathered(agreed(group, [&] {
    std::vector<range_counts> own;
    for (std::size_t i = own_first; i < own_end; ++i)
      own.push_back(counts_in(file.paths()[ranges[i].file], ranges[i].first, ranges[i].end));
    return own;
  }));

  struct begin {
    std::uint64_t byte;
    std::uint64_t line;  // 0: no row begins in the range
  };
  const std::vector<begin> begins = group.gathered(agreed(group, [&] {
    std::vector<begin> own;
    file_place place{0, 1, false};
    for (std::size_t i = 0; i < own_end; ++i) {
      if (ranges[i].first == 0) place = {0, 1, false};
      place.byte = ranges[i].first;
      if (i >= own_first) {
        const auto found = part_begin(file, ranges[i], place, sizes[ranges[i].file]);
        own.push_back(found ? begin{found->byte, found->line} : begin{0, 0});
      }
      place.line += counts[i].line_ends;
      place.in_quotes = place.in_quotes != (counts[i].quotes % 2 == 1);
    }
    return own;
  }));

  std::vector<file_part> parts;
  for (std::size_t i = own_first; i < own_end; ++i) {
    if (begins[i].line == 0) continue;
    std::size_t next = i + 1;
    while (next < ranges.size() && begins[next].line == 0) ++next;
    const bool is_last = next == ranges.size() || ranges[next].file != ranges[i].file;
    const std::uint64_t end = is_last ? sizes[ranges[i].file] : begins[next].byte;
    parts.push_back({ranges[i].file, file_part::byte_range{begins[i].byte, end, begins[i].line}});
  }
  return parts;
}

}  // namespace

void check_can_be_shared(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    std::error_code unknown;
    const std::filesystem::file_status status = std::filesystem::status(path, unknown);
    if (path == "-" || (std::filesystem::exists(status) && std::filesystem::is_other(status))) {
      throw table_error((path == "-" ? "standard input" : printable(path)) +
                        ": several processes cannot share it; name a file");
    }
  }
}

std::vector<file_part> own_parts(process_group& group, const csv_table& file) {
  std::vector<std::uint64_t> sizes;
  bool are_divided = false;
  if (file.paths().size() < group.size()) {
    sizes = agreed(group, [&] {
      return group.is_first() ? divisible_sizes(file) : std::vector<std::uint64_t>();
    });
    group.broadcast(sizes, 0);
    are_divided = !sizes.empty();
  }
  if (are_divided) return own_file_parts(group, file, sizes);
  if (group.is_first()) sizes = sizes_of(file.paths());
  group.broadcast(sizes, 0);
  return own_files(group, sizes);
}

}  // namespace arbor::tree
