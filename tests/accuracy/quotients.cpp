#include "tests/accuracy/quotients.h"

namespace qzoci::test::accuracy {
namespace {

using Unary = sword (*)(const QZCICalcNumber*, QZCICalcNumber*);
using Binary = sword (*)(const QZCICalcNumber*, const QZCICalcNumber*, QZCICalcNumber*);

QZCICalcNumber apply(Unary operation, const QZCICalcNumber& x) {
    QZCICalcNumber result = zero_record(1);
    operation(&x, &result);
    return result;
}

QZCICalcNumber apply(Binary operation, const QZCICalcNumber& x, const QZCICalcNumber& y) {
    QZCICalcNumber result = zero_record(1);
    operation(&x, &y, &result);
    return result;
}

QZCICalcNumber one() {
    QZCICalcNumber record;
    initCalcNumberFromInt(&record, 1);
    return record;
}

/* The quotients that halve the angle whose tangent is z, until z is at most 0.5. */
void append_halvings(QZCICalcNumber z, Quotients& quotients) {
    const QZCICalcNumber half = operand_of_decimal("0.5").record;
    while (QZCICalcNumAbsCompare(&z, &half) == 1) {
        const QZCICalcNumber square = apply(QZCICalcNumMul, z, z);
        if (square.num_infinity != 0) {
            return;
        }
        const QZCICalcNumber root = apply(QZCICalcNumSqrt, apply(QZCICalcNumAdd, square, one()));
        quotients.push_back({z, apply(QZCICalcNumAdd, root, one())});
        z = apply(QZCICalcNumDiv, z, quotients.back().divisor);
    }
}

/* dividend / divisor, and the quotients of its arctangent. */
Quotients arctangent_of_quotient(const QZCICalcNumber& dividend, const QZCICalcNumber& divisor) {
    Quotients quotients{{dividend, divisor}};
    append_halvings(apply(QZCICalcNumDiv, dividend, divisor), quotients);
    return quotients;
}

} // namespace

Quotients tangent_quotients(const Arguments& arguments) {
    const QZCICalcNumber& x = arguments.first.record;
    return {{apply(QZCICalcNumSin, x), apply(QZCICalcNumCos, x)}};
}

Quotients rounded_tangent_quotients(const Arguments& arguments) {
    const QZCICalcNumber& x = arguments.first.record;
    return {{apply(QZCICalcNumSinWithRound, x), apply(QZCICalcNumCosWithRound, x)}};
}

Quotients arctangent_quotients(const Arguments& arguments) {
    Quotients quotients;
    append_halvings(arguments.first.record, quotients);
    return quotients;
}

Quotients arcsine_quotients(const Arguments& arguments) {
    const QZCICalcNumber& x = arguments.first.record;
    const QZCICalcNumber one_record = one();
    if (QZCICalcNumAbsCompare(&x, &one_record) == 0) {
        return {};
    }
    const QZCICalcNumber rest = apply(QZCICalcNumSub, one_record, apply(QZCICalcNumMul, x, x));
    return arctangent_of_quotient(x, apply(QZCICalcNumSqrt, rest));
}

Quotients angle_quotients(const Arguments& arguments) {
    return arguments.second.is_zero()
               ? Quotients{}
               : arctangent_of_quotient(arguments.first.record, arguments.second.record);
}

Quotients hyperbolic_quotients(const Arguments& arguments) {
    return {{one(), apply(QZCICalcNumExp, arguments.first.record)}};
}

Quotients hyperbolic_tangent_quotients(const Arguments& arguments) {
    Quotients quotients = hyperbolic_quotients(arguments);
    const QZCICalcNumber& power = quotients.back().divisor;
    const QZCICalcNumber reciprocal = apply(QZCICalcNumDiv, one(), power);
    quotients.push_back({apply(QZCICalcNumSub, power, reciprocal), apply(QZCICalcNumAdd, power, reciprocal)});
    return quotients;
}

Quotients logarithm_quotients(const Arguments& arguments) {
    const QZCICalcNumber lower = operand_of_decimal("0.9").record;
    const QZCICalcNumber upper = operand_of_decimal("1.1").record;
    QZCICalcNumber r = arguments.first.record;
    while (QZCICalcNumCompare(&r, &lower) <= 0 || QZCICalcNumCompare(&r, &upper) >= 0) {
        r = apply(QZCICalcNumSqrt, r);
    }
    return {{apply(QZCICalcNumSub, r, one()), apply(QZCICalcNumAdd, r, one())}};
}

Quotients power_quotients(const Arguments& arguments) {
    Arguments base = arguments;
    base.first.record.num_signed = 1;
    return logarithm_quotients(base);
}

Quotients integer_power_quotients(const Arguments& arguments) {
    if (arguments.exponent >= 0) {
        return {};
    }
    QZCICalcNumber power = zero_record(1);
    QZCICalcNumIntPower(&arguments.first.record, -arguments.exponent, &power);
    return {{one(), power}};
}

bool is_unlucky(const Quotient& quotient) {
    const QZCICalcNumber made = apply(QZCICalcNumDiv, quotient.dividend, quotient.divisor);
    if (quotient.dividend.num_infinity != 0 || quotient.divisor.num_infinity != 0 || made.num_infinity != 0 ||
        quotient.divisor.is_zero != 0) {
        return false;
    }
    const Real exact = value_of(quotient.dividend) / value_of(quotient.divisor);
    return magnitude(value_of(made) - exact) > power_of_ten(-160);
}

} // namespace qzoci::test::accuracy
