/* Prints the third of the decimal given, and divides it by zero: one error line on standard error. */
#include <qzoci/decimal_text.hpp>
#include <qzoci/oci_calc_number.h>
#include <qzoci/qzoci_log.h>

#include <iostream>

int main(int argc, char** argv) {
    const auto number = argc == 2 ? qzoci::parse_record(argv[1]) : qzoci::parse_record("");
    if (!number) {
        return 2;
    }
    QZCICalcNumber divisor;
    QZCICalcNumber quotient;
    initCalcNumberFromInt(&divisor, 3);
    if (QZCICalcNumDiv(&*number, &divisor, &quotient) != OCI_SUCCESS) {
        return 1;
    }
    std::cout << qzoci::format_record(quotient) << '\n';
    initNullValue(&divisor);
    return QZCICalcNumDiv(&*number, &divisor, &quotient) == OCI_ERROR &&
                   qzoci_log_get_level() == LOG_LEVEL_ERROR
               ? 0
               : 1;
}
