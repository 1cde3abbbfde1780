/* Compiled, not run, in every C standard the header is meant for. */
#include "qzoci/qzoci_log.h"

static void receive(void* user, log_level level, const char* file, long line, const char* text) {
    (void)user;
    (void)level;
    (void)file;
    (void)line;
    (void)text;
}

int use_every_function(void);

int use_every_function(void) {
    const qzoci_log_callback callback = receive;
    int status = qzoci_log_set_level(LOG_LEVEL_DEBUG);
    status |= qzoci_log_set_level(QZOCI_LOG_OFF);
    status |= qzoci_log_get_level();
    status |= qzoci_log_to_stderr();
    status |= qzoci_log_to_file("path");
    status |= qzoci_log_to_callback(callback, &status);
    status |= qzoci_log_to_none();
    status |= qzoci_log_is_on(LOG_LEVEL_DEBUG);
    qzoci_log_inner(LOG_LEVEL_DEBUG, __FILE__, __LINE__, "%d", status);
    return status;
}
