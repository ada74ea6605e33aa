// Which kinds of columns a domain allows, and in which class each column is stored.

#include <utility>

#include "arbor/model/column.h"
#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"
#include "arbor/utils/text_storage.h"

namespace arbor::impls {

using strata::util::joined;

namespace {

// Why a column of this kind cannot have this domain; empty if it can.
std::string refusal(const o_set& domain, const std::string& name, const std::string& type,
                    column::_type kind) {
  const bool numeric = domain.is_dt_numeric();
  const bool unknowns = domain.contains_null();
  if (kind == column::CONTINUOUS && !numeric) {
    return joined({"Continuous column '", name, "' requires a numeric data type"});
  }
  if (kind == column::WEIGHTS && !numeric) {
    return joined({"Weights column '", name, "' requires a non-negative numeric data type"});
  }
  if (kind == column::WEIGHTS && unknowns)
    return joined({"Weights column '", name, "' does not admit unknown values"});
  if (kind == column::CLASS && unknowns)
    return joined({"Class column '", name, "' does not admit unknown values"});
  if (domain.is_dt_null() && kind != column::IGNORE) {
    return "Null set of column values can only be used for ignore column type";
  }
  // A second guard: the kinds that admit no unknown values have been refused by name above.
  if (!column::admits_null(type) && unknowns)
    return joined({"Column type ", type, " does not admit unknown values"});
  return "";
}

}  // namespace

column* column::NEW_COLUMN(o_set* domain, const std::string& name, const std::string& type,
                           std::string& error) {
  if (domain == nullptr) {
    error = "No set of values provided";
    return nullptr;
  }
  _type kind = IGNORE;
  if (!get_type(type, kind)) {
    error = joined({"Unknown column type: ", type});
    return nullptr;
  }
  std::string why_not = refusal(*domain, name, type, kind);
  if (!why_not.empty()) {
    error = std::move(why_not);
    return nullptr;
  }

  if (domain->is_dt_null()) return new column(domain, name, kind);
  const unsigned int known = domain->size_of_known();
  if (known <= 2 && kind == DISCRETE && !domain->contains_null())
    return new column_bool(domain, name, kind);
  if (known <= 0xFE) return new column_typed<unsigned char>(domain, name, kind);
  if (known <= 0xFFFE) return new column_typed<unsigned short>(domain, name, kind);
  if (known <= 0xFFFFFFFE) return new column_typed<unsigned int>(domain, name, kind);
  return new column_typed<unsigned long long>(domain, name, kind);
}

}  // namespace arbor::impls
