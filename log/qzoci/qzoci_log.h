/* A ready logging function: qzoci_log_inner and qzoci_log_is_on of qzoci/oci_log.h, with levels and
 * destinations.
 *
 * A host that has no logging of its own links this library; one that has, leaves it out and defines the two
 * functions itself. Both stand in one object file of the archive: the engine refers to qzoci_log_is_on
 * weakly, a weak reference pulls nothing out of an archive, so it has to come along with qzoci_log_inner.
 *
 * THE STATE IS ONE PER PROCESS: a level and a destination. At first use (the first line or the first call of
 * any function here, whichever comes first) the level is taken from the environment variable QZOCI_LOG_LEVEL
 * and the destination is the standard error stream. Nothing needs starting or stopping.
 *
 *   QZOCI_LOG_LEVEL   trace debug info warn error fatal slowsql off, in any case, or the number 1 to 8.
 *                     Unset or empty: error. Any other text: one line of complaint on standard error, and
 * error. It is read once; later changes of the environment are not seen.
 *
 * A LINE on standard error and in a file is one line of text (longer than any fixed buffer if need be):
 *
 *   [2026-11-21 11:28:46.123456+00:00] [4711/4713] [error] qzoci/oci_calc_number_model.cpp:123: the text
 *    local time, UTC offset             process/thread level   file:line as the caller gave them
 *
 * THREADS. Every function may be called from any thread at any time, also while others log. A line goes to
 * exactly one destination, whole; lines of one thread keep their order. Not for signal handlers. errno is
 * left as it was, and a thread is not cancelled while it writes a line.
 *
 * COST. A line below the level costs one relaxed atomic load: neither the format nor its arguments are read.
 *
 * ERRORS. No function throws or ends the process. A line that cannot be formatted appears as its format
 * string. A line that cannot be written (disk full) is lost, perhaps in part: the file then reports the
 * reason on standard error, at most once a second, and goes on trying with each later line; errors of
 * standard error itself are ignored. A line for which there is no memory is lost.
 *
 * FORK. A child may log, also when other threads of its parent were writing a line at that moment; it
 * inherits level and destination, and parent and child may append to one file. (The thread number is the
 * forking thread's, the process number the child's own.) An executed program does not inherit the file.
 *
 * EXIT. Each line is handed to the operating system before the call returns, so nothing is left to flush. The
 * state is never destroyed: destructors of static objects and exit handlers may log. */
#ifndef QZOCI_LOG_QZOCI_LOG_H
#define QZOCI_LOG_QZOCI_LOG_H

#include "qzoci/oci_log.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The level above all lines: keeps none. Not a level of lines. */
#define QZOCI_LOG_OFF 8

/* The statuses below are 0 for success, or a value of <errno.h>; on failure nothing has changed. */

/* Keeps lines of this level and above. (A line of a level outside the enumeration is always dropped.)
 *
 *   level   LOG_LEVEL_TRACE (1) .. LOG_LEVEL_SLOWSQL (7), or QZOCI_LOG_OFF
 *
 * Holds from the next line on, in place of the environment's level.
 * Returns 0; EINVAL: no such level; ENOMEM. */
int qzoci_log_set_level(int level);

/* The level set last, the environment's at first; 1..8, whatever the destination. */
int qzoci_log_get_level(void);

/* The four functions below replace the destination. When one returns, the former destination gets no further
 * line, its file is closed, and its callback runs on no thread, so that what `user` points to may go; only
 * when called from inside a callback, other threads' calls of the former callback may still be running. */

/* Lines go to the standard error stream. Returns 0 or ENOMEM. */
int qzoci_log_to_stderr(void);

/* Lines are appended to the file `path`, which is made if it does not exist; its folder must exist. The file
 * stays open: after it has been renamed by a log rotation, call this again.
 *
 * Returns 0; EINVAL: `path` is null; ENOMEM; or why the file cannot be opened for appending: EACCES, EISDIR,
 * ENOENT, ENOTDIR, EROFS, ... (EIO when no reason is known). */
int qzoci_log_to_file(const char* path);

/* Receives one line.
 *
 *   user          as given to qzoci_log_to_callback
 *   level         of the line
 *   file, line    where it was written, as the caller gave them
 *   text          the formatted text: no prefix, no newline added; valid until the callback returns
 *
 * Called on the thread that writes the line, by several threads at once if several write, with no lock held:
 * it may call operations of the engine and functions of this header. What it logs comes back to it, so one
 * that logs without a condition recurses without end. It must return; a C++ exception that leaves it is
 * dropped. */
typedef void (*qzoci_log_callback)(void* user, log_level level, const char* file, long line,
                                   const char* text);

/* Lines go to `callback`. Returns 0; EINVAL: `callback` is null; ENOMEM. */
int qzoci_log_to_callback(qzoci_log_callback callback, void* user);

/* Lines go nowhere; qzoci_log_is_on then answers zero for every level, so that the engine need not write any.
 * Returns 0 or ENOMEM. */
int qzoci_log_to_none(void);

#ifdef __cplusplus
}
#endif

#endif /* QZOCI_LOG_QZOCI_LOG_H */
