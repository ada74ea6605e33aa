#include <cstdio>
#include <memory>
#include <vector>

#include "arbor/model/column.h"

using namespace arbor::impls;

std::unique_ptr<column> make_column(const char* name, const char* kind, const char* type,
                                    const std::vector<const char*>& values) {
  std::unique_ptr<o_set> domain(o_set::NEW_O_SET(type, true, "?"));  // "?" is the unknown value
  for (const char* value : values) domain->insert(value);
  std::string error;  // says why when a column cannot be made
  std::unique_ptr<column> made(column::NEW_COLUMN(domain.get(), name, kind, error));
  domain.release();  // it is the column's now
  for (const char* value : values) made->push_back(value);
  return made;
}

int main() {
  const auto humidity =
      make_column("humidity", "continuous", "integer", {"85", "90", "70", "65", "60", "62"});
  const auto play =
      make_column("play", "class", "string", {"no", "no", "yes", "yes", "yes", "yes"});
  w_sequence cases;  // rows and their weights
  for (unsigned int row = 0; row < play->size(); ++row) cases.push_back({row, 1.0F});

  auto codes = humidity->get_range();
  column::splitting_desc split;
  humidity->quality_measure(play.get(), 6.0F, &cases, codes, 2.0F, nullptr, split, true);
  std::printf("gain %.4f, split information %.4f, humidity <= %s\n", split.gain, split.split_info,
              humidity->find_threshold(split.low_code, split.high_code).c_str());
}
