/* The host's logging function: one line of output for each line taken, "LINE <level> <file> <text>". */
#include "qzoci/oci_log.h"

#include <stdarg.h>
#include <stdio.h>

void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt, ...) {
    va_list arguments;
    (void)line;
    printf("LINE %d %s ", (int)level, file);
    va_start(arguments, fmt);
    vprintf(fmt, arguments);
    va_end(arguments);
    printf("\n");
}
