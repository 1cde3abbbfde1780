/* The subcommands, their arguments taken apart. Each writes its results and messages; all throw IoError. */
#ifndef QZNUM_COMMANDS_HPP
#define QZNUM_COMMANDS_HPP

#include "exit_status.hpp"
#include "output.hpp"

#include <string>
#include <vector>

namespace qznum {

struct DecodeOptions {
    std::vector<std::string> numbers; /* none: values come from the file */
    std::string file_name;            /* empty or "-": standard input */
    bool every_byte = false;
    bool force = false;
};

/* Throws UsageError. */
ExitStatus decode(const DecodeOptions& options, Output& output);

struct EncodeOptions {
    std::vector<std::string> decimals; /* none: values come from the file */
    std::string file_name;             /* empty or "-": standard input */
};

/* Throws UsageError. */
ExitStatus encode(const EncodeOptions& options, Output& output);

struct EvalOptions {
    std::string expression;
    bool store_each_result = false;
    bool record = false;
    bool limbs = false;
};

ExitStatus eval(const EvalOptions& options, Output& output);

/* A line for each function: call, summary, domain, special values, accuracy; and for each constant. */
ExitStatus list_functions(Output& output);

} // namespace qznum

#endif /* QZNUM_COMMANDS_HPP */
