#include "arbor/model/make_column.h"

#include <stdexcept>

namespace arbor::impls {

std::unique_ptr<o_set> make_domain(const std::string& data_type, bool admits_null,
                                   const std::string& null_text) {
  std::unique_ptr<o_set> made(o_set::NEW_O_SET(data_type, admits_null, null_text));
  made->release_values_at_end();
  return made;
}

std::unique_ptr<column> make_column(std::unique_ptr<o_set> domain, const std::string& name,
                                    const std::string& kind) {
  std::string error;
  std::unique_ptr<column> made(column::NEW_COLUMN(domain.get(), name, kind, error));
  if (made == nullptr) throw std::runtime_error(error);
  domain.release();  // the column owns it now
  return made;
}

std::unique_ptr<column> read_column(strata::inpout::ibinstream& in) {
  column* loaded = nullptr;
  std::string error;
  read_column(in, loaded, error);
  std::unique_ptr<column> owner(loaded);
  if (!error.empty()) throw std::runtime_error(error);
  if (owner != nullptr && owner->get_o_set() != nullptr)
    owner->get_o_set()->release_values_at_end();
  return owner;
}

}  // namespace arbor::impls
