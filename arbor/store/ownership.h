// To whom a file belongs that replaces another one.
#ifndef ARBOR_STORE_OWNERSHIP_H
#define ARBOR_STORE_OWNERSHIP_H

#include "arbor/csv/table_error.h"

namespace arbor::tree {

// Whether the owner and the group of a file must be those of the file that replaces it, or may
// become those of this process where the system does not allow that.
enum class ownership { kept, may_change };

// The new file cannot have the owner and the group of the present one, which must be kept.
class ownership_error : public table_error {
 public:
  using table_error::table_error;
};

}  // namespace arbor::tree

#endif
