// Messages for the person who runs the program, on standard error.
#ifndef ARBOR_TOOLS_MESSAGES_H
#define ARBOR_TOOLS_MESSAGES_H

#include <string>

namespace arbor::tools {

// Writes the name of the program and the message in one line. All messages come through here: what
// a file or an argument has put into one cannot reach the terminal but as shown_text.h shows it,
// and of a long one at most 1000 columns do.
void complain(const std::string& message);

// Writes that memory is short, without using any.
void complain_of_memory() noexcept;

}  // namespace arbor::tools

#endif
