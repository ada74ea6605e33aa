#include "arbor/processes/rating_by_cases.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/extract_rows.h"
#include "arbor/processes/agreement.h"

namespace arbor::tree {

namespace {

using words = std::vector<std::uint32_t>;

words codes_of(const impls::column& column, const impls::w_sequence& cases) {
  words codes;
  codes.reserve(cases.size());
  impls::with_codes(column, [&](auto code_of) {
    for (const auto& weighted : cases) codes.push_back(code_of(weighted.first));
  });
  return codes;
}

void append(words& to, const words& added) {
  to.insert(to.end(), added.begin(), added.end());
}

// For each sequence the number of cases, their codes, their classes and, if they are uneven, the
// bits of their weights.
words packed_cases(const shared_cases& node, const impls::column& attribute) {
  words packed;
  for (const auto& sequence : node.sequences) {
    const impls::w_sequence& cases = *sequence;
    packed.push_back(static_cast<std::uint32_t>(cases.size()));
    append(packed, codes_of(attribute, cases));
    append(packed, codes_of(node.rows->class_column(), cases));
    if (node.is_even()) continue;
    const std::size_t begin = packed.size();
    packed.resize(begin + cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i)
      std::memcpy(&packed[begin + i], &cases[i].second, sizeof(float));
  }
  return packed;
}

// All cases as rows of an attribute and a class of their own.
class received_cases {
 public:
  received_cases(const shared_cases& of_node, const impls::column& of_attribute)
      : node(of_node),
        attribute(impls::extract_rows(of_attribute, {})),
        classes(impls::extract_rows(node.rows->class_column(), {})) {
    attribute->reserve(static_cast<unsigned int>(node.all));
    classes->reserve(static_cast<unsigned int>(node.all));
    cases.reserve(node.all);
  }

  // `parts` are those that the processes have packed. Each is released once its cases are here.
  judged_split rate(std::vector<words> parts, code_range range, const rated_node& known) {
    std::vector<const std::uint32_t*> next;
    for (const words& part : parts) next.push_back(part.data());
    for (std::size_t i = 0; i < node.sequences.size(); ++i) {
      for (std::size_t p = 0; p < parts.size(); ++p) {
        next[p] = add_sequence(next[p]);
        if (i + 1 == node.sequences.size()) parts[p] = words();
      }
    }
    return rate_split(*attribute, range, {cases, *classes, known});
  }

 private:
  // Returns where the next sequence begins.
  const std::uint32_t* add_sequence(const std::uint32_t* packed) {
    const std::uint32_t count = *packed++;
    attribute->append_codes(packed, count);
    packed += count;
    classes->append_codes(packed, count);
    packed += count;
    for (std::uint32_t i = 0; i < count; ++i) {
      auto weight = static_cast<float>(node.even_weight);
      if (!node.is_even()) std::memcpy(&weight, packed++, sizeof weight);
      cases.push_back({static_cast<unsigned int>(cases.size()), weight});
    }
    return packed;
  }

  const shared_cases& node;
  std::unique_ptr<impls::column> attribute;
  std::unique_ptr<impls::column> classes;
  impls::w_sequence cases;
};

}  // namespace

std::vector<shared_result> rate_by_cases(process_group& group, const shared_cases& node,
                                         const std::vector<shared_attribute>& attributes,
                                         const rated_node& known) {
  std::vector<shared_result> results;
  if (!attributes.empty() && node.all > std::numeric_limits<std::uint32_t>::max()) {
    throw agreed_failure("column \"" + attributes.front().column->get_name() +
                         "\" has too many values for its more than 4294967295 cases to be "
                         "rated by one process");
  }
  for (std::size_t first = 0; first < attributes.size(); first += group.size()) {
    const std::size_t count = std::min<std::size_t>(group.size(), attributes.size() - first);
    std::vector<words> outgoing(group.size());
    for (std::size_t i = 0; i < count; ++i)
      outgoing[i] = packed_cases(node, *attributes[first + i].column);
    std::vector<words> incoming = group.exchanged(std::move(outgoing));
    if (group.rank() >= count) continue;
    const shared_attribute& own = attributes[first + group.rank()];
    received_cases all(node, *own.column);
    results.push_back(shared_result::of(own, all.rate(std::move(incoming), own.range, known)));
  }
  return results;
}

}  // namespace arbor::tree
