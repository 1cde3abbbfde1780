/* A host in plain C: unpacks two stored numbers, takes a remainder, packs it, and provokes one error line.
 * Prints "RESULT <bytes>" and the two statuses; exits with 1 on an unexpected one. Six public operations are
 * called. */
#include "qzoci/oci_calc_number.h"

#include <stdio.h>

int main(void) {
    const OCINumber dividend_bytes = {{10, 193, 8, 31, 1, 1, 1, 1, 1, 1, 6}}; /* 7.3000000000000005 */
    const OCINumber divisor_bytes = {{3, 193, 3, 51}};                        /* 2.5 */
    const OCINumber zero_bytes = {{1, 128}};
    OCINumber packed = {{0}};
    QZCICalcNumber dividend;
    QZCICalcNumber divisor;
    QZCICalcNumber zero;
    QZCICalcNumber result;
    int i;

    if (QZCICalcNumFromNumber(&dividend, &dividend_bytes) != OCI_SUCCESS ||
        QZCICalcNumFromNumber(&divisor, &divisor_bytes) != OCI_SUCCESS ||
        QZCICalcNumFromNumber(&zero, &zero_bytes) != OCI_SUCCESS ||
        QZCICalcNumMod(&dividend, &divisor, &result) != OCI_SUCCESS ||
        QZCICalcNumToNumber(&result, &packed) != OCI_SUCCESS) {
        return 1;
    }
    if (QZCICalcNumDiv(&dividend, &zero, &result) != OCI_ERROR) {
        return 1;
    }
    printf("RESULT");
    for (i = 0; i <= packed.OCINumberPart[0]; ++i) {
        printf(" %d", packed.OCINumberPart[i]);
    }
    printf("\n");
    return 0;
}
