/* Converts a ledger of stored numbers into euro, from C alone:
 *
 *     convert_ledger RATES LEDGER | qznum decode
 *
 * A line of either file is "CURRENCY: HEX  # comment": what one euro is in that currency, and an amount in
 * it. Each amount, rounded to cents, and the total are written as stored numbers in the same form. */
#include "qzoci/oci_calc_number.h"

#include <stdarg.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { max_entries = 64, label_size = 16, line_size = 256 };

typedef struct Entry {
    char label[label_size];
    QZCICalcNumber value;
} Entry;

/* ---- What the engine asks of its host: a logging function ---- */

void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt, ...) {
    if (qzoci_log_is_on(level) == 0) {
        return;
    }
    va_list arguments;
    va_start(arguments, fmt);
    fprintf(stderr, "%s:%ld: ", file, line);
    vfprintf(stderr, fmt, arguments);
    fputc('\n', stderr);
    va_end(arguments);
}

/* Says no to the engine's many debug lines, which makes it faster. */
int qzoci_log_is_on(log_level level) {
    return level >= LOG_LEVEL_ERROR;
}

/* ---- Files ---- */

static void die(const char* what, const char* which) {
    fprintf(stderr, "convert_ledger: %s: %s\n", what, which);
    exit(EXIT_FAILURE);
}

/* Reads pairs of hex digits into the number, whose other bytes become 0. */
static bool parse_hex(const char* text, OCINumber* number) {
    memset(number, 0, sizeof *number);
    size_t count = 0;
    int used = 0;
    unsigned int byte = 0;
    while (count < QZOCI_NUMBER_SIZE && sscanf(text, "%2x%n", &byte, &used) == 1 && used == 2) {
        number->OCINumberPart[count] = (ub1)byte;
        ++count;
        text += used;
    }
    return count > number->OCINumberPart[0];
}

static size_t read_entries(const char* file_name, Entry entries[max_entries]) {
    FILE* const file = fopen(file_name, "r");
    if (file == NULL) {
        die("cannot open", file_name);
    }
    size_t count = 0;
    char line[line_size];
    while (fgets(line, sizeof line, file) != NULL) {
        char hex[2 * QZOCI_NUMBER_SIZE + 1];
        char label[label_size];
        if (line[0] == '#' || line[0] == '\n') {
            continue;
        }
        OCINumber number;
        if (count == max_entries || sscanf(line, "%15[^:]: %44[0-9a-f]", label, hex) != 2 ||
            !parse_hex(hex, &number) ||
            QZCICalcNumFromNumber(&entries[count].value, &number) != OCI_SUCCESS) {
            die("cannot use this line", line);
        }
        memcpy(entries[count].label, label, sizeof label);
        ++count;
    }
    if (ferror(file) != 0) {
        die("cannot read", file_name);
    }
    fclose(file);
    return count;
}

static const QZCICalcNumber* find_rate(const Entry* rates, size_t count, const char* label) {
    for (size_t i = 0; i < count; ++i) {
        if (strcmp(rates[i].label, label) == 0) {
            return &rates[i].value;
        }
    }
    die("no rate for", label);
    return NULL;
}

static void print_stored(const char* label, const QZCICalcNumber* value) {
    OCINumber number = {{0}};
    QZCICalcNumToNumber(value, &number);
    printf("%s: ", label);
    for (size_t i = 0; i < QZOCI_NUMBER_SIZE; ++i) {
        printf("%02x", (unsigned int)number.OCINumberPart[i]);
    }
    printf("\n");
}

/* ---- Arithmetic ---- */

static void check(sword status) {
    if (status != OCI_SUCCESS) {
        die("a computation failed", "see the line above");
    }
}

/* quotient = amount / rate, exact in all its digits but the last.
 *
 * A divisor of two significant limbs (6.55957 is 6 and 55957000) can give a quotient that is not the
 * mathematical one; a divisor of one limb never does. So both sides are multiplied by 10 until the rate has a
 * single limb. */
static void divide_by_rate(const QZCICalcNumber* amount, const QZCICalcNumber* rate,
                           QZCICalcNumber* quotient) {
    enum { digits_of_limb = 8 };

    QZCICalcNumber dividend = *amount;
    QZCICalcNumber divisor = *rate;
    for (int i = 0; i < digits_of_limb && divisor.start_pos != divisor.end_pos; ++i) {
        check(QZCICalcNumMulWhitInterge(&dividend, 10, &dividend));
        check(QZCICalcNumMulWhitInterge(&divisor, 10, &divisor));
    }
    if (divisor.start_pos != divisor.end_pos) {
        die("a rate has too many digits", "");
    }
    check(QZCICalcNumDiv(&dividend, &divisor, quotient));
}

/* Rounds a positive amount to cents, a half upward. */
static void round_to_cents(QZCICalcNumber* amount) {
    QZCICalcNumber hundred;
    QZCICalcNumber half;
    QZCICalcNumber two;
    initCalcNumberFromInt(&hundred, 100);
    initCalcNumberFromInt(&half, 1);
    initCalcNumberFromInt(&two, 2);
    check(QZCICalcNumDiv(&half, &two, &half));
    check(QZCICalcNumMul(amount, &hundred, amount));
    check(QZCICalcNumAdd(amount, &half, amount));
    check(QZCICalcNumToRound(amount));
    check(QZCICalcNumDiv(amount, &hundred, amount));
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: convert_ledger RATES LEDGER\n");
        return 2;
    }
    static Entry rates[max_entries];
    static Entry ledger[max_entries];
    const size_t rate_count = read_entries(argv[1], rates);
    const size_t ledger_count = read_entries(argv[2], ledger);

    QZCICalcNumber total;
    initNullValue(&total);
    for (size_t i = 0; i < ledger_count; ++i) {
        QZCICalcNumber euro;
        divide_by_rate(&ledger[i].value, find_rate(rates, rate_count, ledger[i].label), &euro);
        round_to_cents(&euro);
        print_stored(ledger[i].label, &euro);
        check(QZCICalcNumAdd(&total, &euro, &total));
    }
    print_stored("total", &total);
    if (fflush(stdout) != 0) {
        die("cannot write", "standard output");
    }
    return EXIT_SUCCESS;
}
