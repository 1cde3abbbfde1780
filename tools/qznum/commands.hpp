/* The subcommands. Each adds itself to the command line, from the file that is named like it. */
#ifndef QZNUM_COMMANDS_HPP
#define QZNUM_COMMANDS_HPP

#include "command_line.hpp"

namespace qznum {

void add_decode(CommandLine& line);
void add_encode(CommandLine& line);
void add_check(CommandLine& line);
void add_canon(CommandLine& line);
void add_sum(CommandLine& line);
void add_stats(CommandLine& line);
void add_profile(CommandLine& line);
void add_digest(CommandLine& line);
void add_diff(CommandLine& line);
void add_eval(CommandLine& line);
void add_functions(CommandLine& line);
void add_map(CommandLine& line);
void add_repl(CommandLine& line);
void add_trace(CommandLine& line);

} // namespace qznum

#endif /* QZNUM_COMMANDS_HPP */
