// Domains and columns with owners, and with errors as exceptions.
//
//   auto domain = make_domain("integer", true, "?");
//   for (const char* text : {"85", "?", "70"}) domain->insert(text);
//   auto humidity = make_column(std::move(domain), "humidity", "continuous");
//
// A domain that is made or read here releases its known values when it is destroyed, and so do its
// clones. In all else it is the domain that o_set::NEW_O_SET makes.
#ifndef ARBOR_MODEL_MAKE_COLUMN_H
#define ARBOR_MODEL_MAKE_COLUMN_H

#include <memory>
#include <string>

#include "arbor/model/column.h"
#include "arbor/model/o_set.h"
#include "arbor/utils/ibinstream.h"

namespace arbor::impls {

// Makes a domain without values, see o_set::NEW_O_SET. Throws what that throws.
std::unique_ptr<o_set> make_domain(const std::string& data_type, bool admits_null,
                                   const std::string& null_text);

// Makes a column without rows, see column::NEW_COLUMN, which owns the domain. If a column of this
// kind cannot have this domain, throws std::runtime_error with the reason; the domain is destroyed
// then.
std::unique_ptr<column> make_column(std::unique_ptr<o_set> domain, const std::string& name,
                                    const std::string& kind);

// Reads the record of a column; returns null if null was written. Throws std::runtime_error if the
// column cannot have its domain, and what reading a column throws.
std::unique_ptr<column> read_column(strata::inpout::ibinstream& in);

}  // namespace arbor::impls

#endif
