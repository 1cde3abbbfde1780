/* Named values, and the computing of expressions with them: what eval, map, trace and repl share. */
#ifndef QZNUM_COMPUTE_HPP
#define QZNUM_COMPUTE_HPP

#include "command_line.hpp"
#include "evaluate.hpp"
#include "output.hpp"

#include "qzoci/oci_calc_number.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

/* Values by name, kept as records. */
struct Variables {
    std::vector<std::string> names;
    std::vector<QZCICalcNumber> records; /* of the names, in their order */

    /* A new one, or a new value of an old one. */
    void set(const std::string& name, const QZCICalcNumber& record);
};

/* Runs the action; an error in the text is told with a caret under its place. False: there was one. */
bool succeeds(std::string_view text, Output& output, const std::function<void()>& action);

/* Tells what became of the digits of the text's numbers on their way through the stored form. */
void tell_changes(std::string_view text, const Program& program, Output& output);

/* Compiles and runs the steps of the text once. Throws EvaluationError. */
QZCICalcNumber compute(std::string_view text, const std::vector<Step>& steps, const Variables& variables,
                       const Running& running, Output& output);

/* The options with which an expression is computed. */
class ComputeOptions {
public:
    /* The options live as long as the command. */
    void add_to(Command& command);

    /* Throws UsageError for a time that is none. */
    Running running() const;

    /* What --set says; false when one of them is in error, which has been told. Throws UsageError. */
    bool set_variables(Variables& variables, Output& output) const;

private:
    std::vector<std::string> assignments_;
    std::string time_limit_;
    bool store_each_result_ = false;
};

/* How an expression is written, with every function and constant; and each operator's place. */
std::string expression_help();

} // namespace qznum

#endif /* QZNUM_COMPUTE_HPP */
