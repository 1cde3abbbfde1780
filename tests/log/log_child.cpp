/* The program that the tests run where a process of its own is needed: a fresh environment, standard error,
 * the end of the process. Its first argument names one of the functions below. */
#include "qzoci/qzoci_log.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

void write_line(log_level level, const char* text) {
    qzoci_log_inner(level, "child.cpp", 7, "%s", text);
}

/* Constructed before the first use of the log, so destroyed after everything that use may have constructed.
 */
struct LogsWhenDestroyed {
    bool active = false;

    LogsWhenDestroyed() = default;

    ~LogsWhenDestroyed() {
        if (active) {
            write_line(LOG_LEVEL_ERROR, "static destructor");
        }
    }

    LogsWhenDestroyed(const LogsWhenDestroyed&) = delete;
    LogsWhenDestroyed& operator=(const LogsWhenDestroyed&) = delete;
} logs_when_destroyed;

int print_level() {
    std::printf("%d\n", qzoci_log_get_level());
    return 0;
}

int print_level_found_by_the_first_question() {
    int least = LOG_LEVEL_TRACE;
    while (least <= LOG_LEVEL_SLOWSQL && qzoci_log_is_on(static_cast<log_level>(least)) == 0) {
        ++least;
    }
    std::printf("%d\n", least);
    return 0;
}

int print_level_after_the_environment_changed() {
    write_line(LOG_LEVEL_TRACE, "first use");
    setenv("QZOCI_LOG_LEVEL", "trace", 1);
    return print_level();
}

int print_level_set_at_first_use() {
    qzoci_log_set_level(LOG_LEVEL_WARN);
    return print_level();
}

int write_every_level() {
    for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_SLOWSQL; ++level) {
        write_line(static_cast<log_level>(level), std::to_string(level).c_str());
    }
    return 0;
}

int write_while_the_process_ends() {
    logs_when_destroyed.active = true;
    write_line(LOG_LEVEL_ERROR, "main");
    std::atexit([] { write_line(LOG_LEVEL_ERROR, "exit handler"); });
    return 0;
}

int write_to_file_while_the_process_ends(const char* path) {
    return qzoci_log_to_file(path) == 0 ? write_while_the_process_ends() : 1;
}

/* Lets files grow to `size` bytes at most. */
bool limit_files(rlim_t size) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/* The file must be large already: what standard error says about the losses has to fit into the same size. */
int write_to_file_on_a_full_disk(const char* path) {
    if (qzoci_log_to_file(path) != 0) {
        return 1;
    }
    write_line(LOG_LEVEL_ERROR, "before");
    if (!limit_files(std::filesystem::file_size(path))) {
        return 2;
    }
    for (int i = 0; i < 1000; ++i) {
        write_line(LOG_LEVEL_ERROR, "while full");
    }
    if (!limit_files(RLIM_INFINITY)) {
        return 3;
    }
    write_line(LOG_LEVEL_ERROR, "after");
    return 0;
}

int write_without_standard_error() {
    close(STDERR_FILENO);
    write_line(LOG_LEVEL_ERROR, "nowhere");
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string_view> words(arguments, arguments + count);
    const std::string_view what = count > 1 ? words[1] : "";
    if (what == "level") {
        return print_level();
    }
    if (what == "first-question") {
        return print_level_found_by_the_first_question();
    }
    if (what == "changed-environment") {
        return print_level_after_the_environment_changed();
    }
    if (what == "level-set") {
        return print_level_set_at_first_use();
    }
    if (what == "every-level") {
        return write_every_level();
    }
    if (what == "end") {
        return write_while_the_process_ends();
    }
    if (what == "no-standard-error") {
        return write_without_standard_error();
    }
    if (what == "end-with-file" && count == 3) {
        return write_to_file_while_the_process_ends(arguments[2]);
    }
    if (what == "full-disk" && count == 3) {
        return write_to_file_on_a_full_disk(arguments[2]);
    }
    return 64;
}
