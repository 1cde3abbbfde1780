/* The host's answer that only error lines are kept; says that it was asked: "ASKED <level>". */
#include "qzoci/oci_log.h"

#include <stdio.h>

int qzoci_log_is_on(log_level level) {
    printf("ASKED %d\n", (int)level);
    return level >= LOG_LEVEL_ERROR;
}
