/* Running the steps of an expression on the engine. */
#ifndef QZNUM_EVALUATE_HPP
#define QZNUM_EVALUATE_HPP

#include "engine.hpp"
#include "expression.hpp"

#include "qzoci/oci_calc_number.h"

#include <cstddef>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace qznum {

class EvaluationError : public EngineError {
public:
    EvaluationError(std::size_t position, const EngineError& error)
        : EngineError(error), position_(position) {}

    std::size_t position() const { return position_; }

private:
    std::size_t position_;
};

/* An expression whose numbers are records: each decimal passed through the stored form, each stored number
 * unpacked, once. */
class Computation {
public:
    /* What became of a number's digits on its way through the stored form, or out of it. */
    struct Change {
        std::size_t position;
        std::string text;
    };

    /* Throws EvaluationError. */
    explicit Computation(std::span<const Step> steps);

    const std::vector<Change>& changes() const { return changes_; }

    /* Between operations the records stay as they are, or, on request, pass through the stored form after
     * each one. Throws EvaluationError. */
    QZCICalcNumber run(bool store_each_result) const;

private:
    struct Push {
        QZCICalcNumber record;
    };

    struct Action {
        std::size_t position;
        std::variant<Push, Apply> action;
    };

    QZCICalcNumber record_of_number(std::size_t position, const PushNumber& push);
    void note_dropped_digits(std::size_t position, const OCINumber& number);

    std::vector<Action> actions_;
    std::vector<Change> changes_;
};

} // namespace qznum

#endif /* QZNUM_EVALUATE_HPP */
