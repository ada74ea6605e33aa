#include <cstdio>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "arbor/model/make_column.h"

using namespace arbor::impls;

std::unique_ptr<column> column_of(const char* name, const char* kind, const char* type,
                                  const std::vector<const char*>& values) {
  auto domain = make_domain(type, true, "?");  // "?" is the unknown value
  for (const char* value : values) domain->insert(value);
  auto made = make_column(std::move(domain), name, kind);
  for (const char* value : values) made->push_back(value);
  return made;
}

int main() try {
  const auto humidity =
      column_of("humidity", "continuous", "integer", {"85", "90", "70", "65", "60", "62"});
  const auto play = column_of("play", "class", "string", {"no", "no", "yes", "yes", "yes", "yes"});
  w_sequence cases;  // rows and their weights
  for (unsigned int row = 0; row < play->size(); ++row) cases.push_back({row, 1.0F});

  auto codes = humidity->get_range();
  column::splitting_desc split;
  humidity->quality_measure(play.get(), 6.0F, &cases, codes, 2.0F, nullptr, split, true);
  std::printf("gain %.4f, split information %.4f, humidity <= %s\n", split.gain, split.split_info,
              humidity->find_threshold(split.low_code, split.high_code).c_str());
} catch (const std::exception& error) {  // 8O for 80, say, or a kind that there is not
  std::fprintf(stderr, "%s\n", error.what());
  return 2;
}
