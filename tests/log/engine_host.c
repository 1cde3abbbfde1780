/* A host that names nothing of the logging library: what it links of it, the engine has asked for. */
#include "qzoci/oci_calc_number.h"

int main(void) {
    QZCICalcNumber one;
    QZCICalcNumber zero;
    initCalcNumberFromInt(&one, 1);
    initNullValue(&zero);
    return QZCICalcNumDiv(&one, &zero, &one) == OCI_ERROR ? 0 : 1;
}
