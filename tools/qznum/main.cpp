/* qznum: stored 22-byte numbers decoded, encoded and computed with. */
#include "commands.hpp"
#include "engine.hpp"

#include <cstdio>
#include <exception>

namespace qznum {

namespace {

constexpr const char* description =
    "Decodes, encodes and computes with stored 22-byte numbers.\n"
    "Results go to standard output, all else to standard error. Exit status: 0 all well,\n"
    "1 a value in error, 2 wrong usage, 3 input or output failed.";

constexpr const char* examples = R"(Examples:
  qznum decode 03c10233                a stored number, given as hex, in decimal
  qznum decode -v 043e643366           each of its bytes by name
  qznum encode 1.5 -0.001              decimals as stored numbers
  qznum check 03c10201                 whether one is well-formed, and canonical
  qznum sum 0.1 0.2                    the exact sum, of files too
  qznum stats --file prices.csv --column price
  qznum eval '(1.5 + 0x03c10233) * 2'  arithmetic on decimals and stored numbers
  qznum eval --record '1 / 3'          all 160 digits after the point
  qznum eval 'sqrt(2) * sin(pi / 4)'   elementary functions
  qznum map 'x * 1.19' 25 99.90        an expression over each row of a file, or each argument
  qznum functions                      which there are
  qznum trace '1 / 3 + 1'              what the engine does, step by step
)";

ExitStatus run(const std::vector<std::string>& arguments, Output& output) {
    CommandLine line(description, examples, "qznum " QZNUM_VERSION);
    add_decode(line);
    add_encode(line);
    add_check(line);
    add_canon(line);
    add_sum(line);
    add_stats(line);
    add_profile(line);
    add_digest(line);
    add_diff(line);
    add_eval(line);
    add_functions(line);
    add_map(line);
    add_repl(line);
    add_trace(line);
    show_engine_lines(output, false);
    return line.run(arguments, output);
}

ExitStatus run_and_finish(const std::vector<std::string>& arguments) {
    Output output;
    try {
        const ExitStatus status = run(arguments, output);
        output.finish();
        return status;
    } catch (const ReaderGone&) {
        return ExitStatus::io_error;
    } catch (const IoError& error) {
        output.message("{}", error.what());
        return ExitStatus::io_error;
    } catch (const UsageError& error) {
        output.message("{} (try --help)", error.what());
        return ExitStatus::wrong_usage;
    }
}

} // namespace

} // namespace qznum

int main(int argc, char** argv) {
    try {
        return static_cast<int>(qznum::run_and_finish({argv + 1, argv + argc}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qznum: %s\n", error.what());
        return static_cast<int>(qznum::ExitStatus::io_error);
    }
}
