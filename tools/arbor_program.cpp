#include "tools/arbor_program.h"

#include "tools/classify_command.h"
#include "tools/grow_command.h"
#include "tools/help_command.h"
#include "tools/rate_command.h"
#include "tools/report_command.h"
#include "tools/show_command.h"
#include "tools/validate_command.h"

namespace arbor::tools {

namespace {

constexpr const char* arbor_help = R"("arbor help COMMAND" describes a command.

Examples:
  arbor rate golf.csv --class play
  arbor grow golf.csv --model golf.model
  arbor validate golf.csv
  arbor show golf.model
  arbor report golf.model golf.csv --output golf.html
  arbor classify golf.model tomorrow.csv)";

}  // namespace

arbor_program::arbor_program(const workplace& place)
    : program("arbor", "Decision trees from tables.", arbor_help) {
  add(std::make_unique<rate_command>(parser(), place));
  add(std::make_unique<grow_command>(parser(), place));
  add(std::make_unique<validate_command>(parser()));
  add(std::make_unique<show_command>(parser()));
  add(std::make_unique<report_command>(parser()));
  add(std::make_unique<classify_command>(parser(), place));
  add(std::make_unique<help_command>(parser()));
}

}  // namespace arbor::tools
