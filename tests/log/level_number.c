#include "tests/log/level_number.h"

#include "qzoci/qzoci_log.h"

void write_line_of_level_number(int number) {
    qzoci_log_inner((log_level)number, "file", 1, "a line");
}

int is_level_number_on(int number) {
    return qzoci_log_is_on((log_level)number);
}
