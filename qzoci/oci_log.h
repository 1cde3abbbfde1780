/* The logging function's contract: the host library owns the function, the engine only calls it. */
#ifndef QZOCI_OCI_LOG_H
#define QZOCI_OCI_LOG_H

#ifdef __cplusplus
extern "C" {
#endif

/* The engine writes at LOG_LEVEL_DEBUG (entry and exit of operations, special cases, single steps) and at
 * LOG_LEVEL_ERROR (failures) only. */
typedef enum log_level {
    LOG_LEVEL_TRACE = 1,
    LOG_LEVEL_DEBUG = 2,
    LOG_LEVEL_INFO = 3,
    LOG_LEVEL_WARN = 4,
    LOG_LEVEL_ERROR = 5,
    LOG_LEVEL_FATAL = 6,
    LOG_LEVEL_SLOWSQL = 7
} log_level;

/* Lets the compiler check the arguments of a function against its printf format. */
#if defined(__GNUC__)
#define QZOCI_PRINTF_LIKE(format_index, first_argument)                                                      \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define QZOCI_PRINTF_LIKE(format_index, first_argument)
#endif

/* Takes one line. REQUIRED: the host defines it (or links qzoci::log, which does).
 *
 *   level   of the line
 *   file    path of the source file that writes it, relative to the project's root
 *   line    source line, from 1
 *   fmt     printf format using %p %d %u %i %ld %s, without a newline at the end
 *
 * Called from whatever thread runs the operation, on that thread's stack; must be safe for concurrent
 * callers. It may call operations of the engine. Filtering, prefix and destination are its own business. */
void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt, ...)
    QZOCI_PRINTF_LIKE(4, 5);

/* Tells whether lines of this level are kept: non-zero yes, zero no. OPTIONAL, AND WORTH IT.
 *
 * The engine asks once at the entry of each public call for LOG_LEVEL_DEBUG. On zero, that call and all it
 * calls write no debug line and may use the fast kernels; error lines are always written. A host that does
 * not define this function gets every line and pays for every line: a long division alone writes dozens.
 * Results are the same, digit for digit, either way.
 *
 * The engine refers to it weakly, and a weak reference pulls nothing out of a static archive: define it in
 * the object file that also defines qzoci_log_inner. */
int qzoci_log_is_on(log_level level);

#ifdef __cplusplus
}
#endif

#endif /* QZOCI_OCI_LOG_H */
