#include "arbor/processes/shared_classification.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <exception>
#include <optional>
#include <string_view>

#include "arbor/csv/csv_table.h"
#include "arbor/formats/open_table.h"
#include "arbor/processes/agreement.h"
#include "arbor/processes/file_sharing.h"
#include "arbor/processes/score_list.h"
#include "arbor/tree/file_classifier.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/obinstream.h"

namespace arbor::tree {

namespace {

// The rows of this process, as they are written, until the first process takes them.
class kept_texts {
 public:
  void add(const std::string& text) {
    constexpr std::size_t least_piece = std::size_t{1} << 20U;
    if (pieces.empty() || pieces.back().size() >= least_piece) pieces.emplace_back();
    pieces.back().insert(pieces.back().end(), text.begin(), text.end());
  }

  // Each piece behind its size, and a size of 0 behind the last.
  void send_to_first(process_group& group) {
    for (; !pieces.empty(); pieces.pop_front()) {
      if (pieces.front().empty()) continue;
      group.send(std::vector<std::uint64_t>{pieces.front().size()}, 0);
      group.send(pieces.front(), 0);
    }
    group.send(std::vector<std::uint64_t>{0}, 0);
  }

 private:
  std::deque<std::vector<char>> pieces;
};

template <class Take>
void receive_texts(process_group& group, unsigned int from, Take take) {
  std::vector<std::uint64_t> size(1);
  for (group.receive(size, from); size[0] > 0; group.receive(size, from)) {
    std::vector<char> piece(size[0]);
    group.receive(piece, from);
    take(std::string_view(piece.data(), piece.size()));
  }
}

// The strays of all processes, by attribute.
std::vector<stray_texts> strays_of_all(process_group& group, const std::vector<stray_texts>& own) {
  strata::inpout::memory_device own_record;
  strata::inpout::obinstream out(own_record);
  for (const stray_texts& strays : own) {
    out << static_cast<unsigned long long>(strays.count) << strays.first.c_str()
        << strays.file.c_str() << strays.line;
  }
  strata::inpout::memory_device records(group.gathered(own_record.bytes()));
  strata::inpout::ibinstream in(records);
  std::vector<stray_texts> result(own.size());
  for (unsigned int process = 0; process < group.size(); ++process) {
    for (stray_texts& sum : result) {
      stray_texts strays;
      unsigned long long count = 0;
      in >> count >> strays.first >> strays.file >> strays.line;
      strays.count = count;
      sum.add(strays);
    }
  }
  return result;
}

// Rows behind an error are not written.
void write_rows_of_others(process_group& group, unsigned int first_with_error, kept_texts& own,
                          std::ostream& out, std::exception_ptr& failure) {
  const unsigned int end = std::min(first_with_error + 1, group.size());
  if (!group.is_first() && group.rank() < end) own.send_to_first(group);
  if (!group.is_first()) return;
  for (unsigned int process = 1; process < end; ++process) {
    receive_texts(group, process, [&](std::string_view text) {
      if (!failure) failure = failure_of([&] { write_rows(out, text); });
    });
  }
}

}  // namespace

classification_result classify_shared_table(process_group& group,
                                            const std::vector<std::string>& paths,
                                            const decision_tree& tree,
                                            const classification_options& options,
                                            std::ostream* rows) {
  group.enter("classifying");
  if (group.size() == 1)
    return agreed(group, [&] { return classify_table(paths, tree, options, rows); });
  std::optional<csv_table> file;
  std::optional<file_classifier> classify;
  agree(group, failure_of([&] {
          check_can_be_shared(paths);
          file.emplace(paths, options.input, open_table_file);
          classify.emplace(*file, tree, options, rows != nullptr);
          if (rows != nullptr && group.is_first()) classify->write_names(*rows);
        }));

  std::size_t row_count = 0;
  score_list scores;
  kept_texts texts;
  std::vector<stray_texts> strays(tree.attributes.size());
  const auto take = [&](const classified_rows& classified) {
    if (rows != nullptr && group.is_first()) write_rows(*rows, classified.text);
    if (rows != nullptr && !group.is_first()) texts.add(classified.text);
    row_count += classified.rows;
    if (options.progress) options.progress(row_count);
    for (const scored_case& added : classified.cases) scores.add(added);
    for (std::size_t i = 0; i < strays.size(); ++i) strays[i].add(classified.strays[i]);
  };
  file->keep_parts(own_parts(group, *file));
  std::exception_ptr failure = failure_of([&] { classify->rows(take); });
  if (rows != nullptr)
    write_rows_of_others(group, first_failed(group, failure), texts, *rows, failure);
  agree(group, failure);

  classification_result result;
  std::vector<std::uint64_t> counts{row_count, file->skipped_lines()};
  group.add_up(counts);
  result.rows = counts[0];
  const evaluation quality = evaluation_of_all(group, scores);
  if (!quality.matrix().pairs().empty()) result.quality = quality;
  result.remarks = classify->remarks(strays_of_all(group, strays));
  result.table_name = file->name();
  result.input_remarks = file->remarks(counts[1]);
  return result;
}

}  // namespace arbor::tree
