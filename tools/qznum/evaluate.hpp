/* Expressions made ready to run on the engine: compiled once, run as often as there are rows. */
#ifndef QZNUM_EVALUATE_HPP
#define QZNUM_EVALUATE_HPP

#include "engine.hpp"
#include "expression.hpp"

#include "qzoci/oci_calc_number.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace qznum {

/* An operation failed, or there is no time for it. */
class EvaluationError : public std::runtime_error {
public:
    EvaluationError(std::size_t position, const std::string& reason)
        : std::runtime_error(reason), position_(position) {}

    std::size_t position() const { return position_; }

private:
    std::size_t position_;
};

/* How a program runs. */
struct Running {
    /* Each operation's result passes through the stored form; otherwise the records stay as they are. */
    bool store_each_result = false;
    /* No operation begins when this has gone by since the run began. One operation's time is bounded by itself
     * (QZCI_MAX_DIVISIONS). */
    std::optional<std::chrono::nanoseconds> time_limit{};
};

/* An expression whose numbers are records: each decimal passed through the stored form, each stored number
 * unpacked, once. */
class Program {
public:
    /* What became of a number's digits on its way through the stored form, or out of it. */
    struct Change {
        std::size_t position;
        std::string text;
    };

    /* Throws EvaluationError. */
    explicit Program(std::span<const Step> steps);

    const std::vector<Change>& changes() const { return changes_; }

    /* The variables that it reads, by their index; each once, ascending. */
    const std::vector<std::size_t>& variables() const { return variables_; }

    /* How many records a run works on. */
    std::size_t workspace_size() const { return workspace_size_; }

    /* The result, which is one of the variables, of the workspace, or of the program itself. Uses no heap. Any
     * number of threads may run one program, each in a workspace of its own. Throws EvaluationError.
     *
     *   variables   a record for each index that the program reads; the others are not looked at
     *   workspace   at least workspace_size() records */
    const QZCICalcNumber& run(std::span<const QZCICalcNumber> variables, std::span<QZCICalcNumber> workspace,
                              const Running& running) const;

private:
    enum class Space { numbers, variables, workspace };

    struct Place {
        Space space;
        std::size_t index;
    };

    struct Instruction {
        std::size_t position;
        Operation operation;
        std::size_t operand_count; /* 1 or 2 */
        Place operands[2];
        std::size_t result; /* in the workspace; can be the place of the first operand */
    };

    Place place_of(const Step& step);
    QZCICalcNumber record_of_number(std::size_t position, const PushNumber& push);
    void note_dropped_digits(std::size_t position, const OCINumber& number);

    std::vector<QZCICalcNumber> numbers_;
    std::vector<std::size_t> variables_;
    std::vector<Instruction> instructions_;
    Place result_{};
    std::size_t workspace_size_ = 0;
    std::vector<Change> changes_;
};

} // namespace qznum

#endif /* QZNUM_EVALUATE_HPP */
