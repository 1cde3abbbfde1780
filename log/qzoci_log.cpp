#include "qzoci/qzoci_log.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <pthread.h>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <string_view>
#include <utility>
#include <variant>

namespace {

constexpr const char* level_variable = "QZOCI_LOG_LEVEL";
constexpr int default_level = LOG_LEVEL_ERROR;

/* By level, from LOG_LEVEL_TRACE on. */
constexpr std::array<std::string_view, QZOCI_LOG_OFF> level_names = {"trace", "debug", "info",    "warn",
                                                                     "error", "fatal", "slowsql", "off"};

constexpr bool is_threshold(int level) {
    return level >= LOG_LEVEL_TRACE && level <= QZOCI_LOG_OFF;
}

constexpr char ascii_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/* A locale's idea of lower case must not change which names are known. */
bool equal_in_any_case(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, ascii_lower, ascii_lower);
}

std::optional<int> level_of_text(std::string_view text) {
    const auto* const name = std::ranges::find_if(
        level_names, [text](std::string_view candidate) { return equal_in_any_case(candidate, text); });
    if (name != level_names.end()) {
        return static_cast<int>(name - level_names.begin()) + LOG_LEVEL_TRACE;
    }
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc{} && stop == end && is_threshold(number)) {
        return number;
    }
    return std::nullopt;
}

int level_of_environment() {
    const char* const text = std::getenv(level_variable);
    if (text == nullptr || *text == '\0') {
        return default_level;
    }
    const std::optional<int> level = level_of_text(text);
    if (!level) {
        std::fprintf(
            stderr,
            "%s: unknown level \"%s\" (known: trace, debug, info, warn, error, fatal, slowsql, off, or 1 to "
            "8); using error\n",
            level_variable, text);
    }
    return level.value_or(default_level);
}

/* spdlog has seven values where the enumeration has seven levels; its last one, `off`, passes every filter
 * when it is the level of a line. */
spdlog::level::level_enum spdlog_level(log_level level) {
    return static_cast<spdlog::level::level_enum>(level - LOG_LEVEL_TRACE);
}

/* Our level's name in a line's prefix; spdlog's own names differ. */
class LevelName : public spdlog::custom_flag_formatter {
public:
    void format(const spdlog::details::log_msg& message, const std::tm& /*time*/,
                spdlog::memory_buf_t& line) override {
        const std::string_view name = level_names[static_cast<std::size_t>(message.level)];
        line.append(name.data(), name.data() + name.size());
    }

    std::unique_ptr<spdlog::custom_flag_formatter> clone() const override {
        return std::make_unique<LevelName>();
    }
};

using TextLog = std::unique_ptr<spdlog::logger>;

/* A logger outside spdlog's registry, which is destroyed at exit. */
TextLog text_log(spdlog::sink_ptr sink) {
    auto log = std::make_unique<spdlog::logger>("qzoci", std::move(sink));
    auto formatter = std::make_unique<spdlog::pattern_formatter>();
    formatter->add_flag<LevelName>('*').set_pattern("[%Y-%m-%d %H:%M:%S.%f%z] [%P/%t] [%*] %g:%#: %v");
    log->set_formatter(std::move(formatter));
    log->set_level(spdlog::level::trace);
    return log;
}

struct Receiver {
    qzoci_log_callback callback;
    void* user;
    /* Never kept, only destroyed: its future is ready when the last thread has let go of the receiver. */
    std::promise<void> alive{};
};

/* How many callbacks this thread is inside of. */
thread_local int callback_depth = 0;

void call(const Receiver& receiver, log_level level, const char* file, long line, const char* text) {
    struct Depth {
        Depth() { ++callback_depth; }

        ~Depth() { --callback_depth; }
    } const depth;

    receiver.callback(receiver.user, level, file, line, text);
}

using Destination = std::variant<std::monostate, TextLog, std::shared_ptr<Receiver>>;

/* The level lines must reach to be kept. Stands alone so that dropping a line costs one load. */
constexpr int not_yet_read = 0;
constinit std::atomic<int> threshold{not_yet_read};

class Log {
public:
    /* Never destroyed, because destructors of static objects may log. */
    static Log& instance() {
        static Log& log = *new Log;
        return log;
    }

    void set_level(int level) {
        const std::lock_guard lock(mutex_);
        level_ = level;
        publish_threshold();
    }

    int level() {
        const std::lock_guard lock(mutex_);
        return level_;
    }

    void switch_to(Destination next);
    void write(log_level level, const char* file, long line, std::string_view text);

private:
    Log();

    void publish_threshold() {
        const bool nowhere = std::holds_alternative<std::monostate>(destination_);
        threshold.store(nowhere ? QZOCI_LOG_OFF : level_, std::memory_order_relaxed);
    }

    static void lock() { instance().mutex_.lock(); }

    static void unlock() { instance().mutex_.unlock(); }

    /* Guards the members below. Held while a line of text is written, so that the sinks need no lock of their
     * own and a fork, which takes it, cuts no line in two. Not held while a callback runs. */
    std::mutex mutex_;
    int level_ = level_of_environment();
    Destination destination_ = text_log(std::make_shared<spdlog::sinks::stderr_sink_st>());
};

Log::Log() {
    publish_threshold();
    if (pthread_atfork(lock, unlock, unlock) != 0) {
        throw std::bad_alloc(); /* its only error */
    }
}

void Log::switch_to(Destination next) {
    {
        const std::lock_guard lock(mutex_);
        destination_.swap(next);
        publish_threshold();
    }
    if (auto* const former = std::get_if<std::shared_ptr<Receiver>>(&next)) {
        const std::future<void> gone = (*former)->alive.get_future();
        former->reset();
        /* Inside a callback this thread itself may hold the receiver, or wait for one that waits for it. */
        if (callback_depth == 0) {
            gone.wait();
        }
    }
}

void Log::write(log_level level, const char* file, long line, std::string_view text) {
    std::shared_ptr<Receiver> receiver;
    {
        const std::lock_guard lock(mutex_);
        if (const auto* const log = std::get_if<TextLog>(&destination_)) {
            const spdlog::source_loc place{file, static_cast<int>(line), ""};
            (*log)->log(place, spdlog_level(level), spdlog::string_view_t(text.data(), text.size()));
            (*log)->flush();
            return;
        }
        if (const auto* const current = std::get_if<std::shared_ptr<Receiver>>(&destination_)) {
            receiver = *current;
        }
    }
    if (receiver) {
        call(*receiver, level, file, line, text.data());
    }
}

int threshold_at_first_use() {
    try {
        Log::instance();
        return threshold.load(std::memory_order_relaxed);
    } catch (...) {
        return default_level;
    }
}

bool is_kept(int level) {
    int least = threshold.load(std::memory_order_relaxed);
    if (least == not_yet_read) {
        least = threshold_at_first_use();
    }
    return level >= least && level <= LOG_LEVEL_SLOWSQL;
}

/* Formats into `text`, as much of it as fits. Returns the size the whole needs, its terminator included, or 0
 * when it cannot be formatted. */
std::size_t format_into(spdlog::memory_buf_t& text, const char* fmt, va_list args) {
    const int length = std::vsnprintf(text.data(), text.size(), fmt, args);
    return length < 0 ? 0 : static_cast<std::size_t>(length) + 1;
}

/* For the duration of a line. Cancellation unwinds the stack, which the functions of this file do not let
 * through. */
class CallerKeptAsItWas {
public:
    CallerKeptAsItWas() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state_); }

    ~CallerKeptAsItWas() {
        pthread_setcancelstate(cancel_state_, nullptr);
        errno = error_;
    }

    CallerKeptAsItWas(const CallerKeptAsItWas&) = delete;
    CallerKeptAsItWas& operator=(const CallerKeptAsItWas&) = delete;

private:
    int error_ = errno;
    int cancel_state_ = PTHREAD_CANCEL_ENABLE;
};

/* The status of `action`, which may throw. */
template <class Action>
int status_of(Action action) {
    const CallerKeptAsItWas kept;
    try {
        action();
        return 0;
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    } catch (...) {
        return EIO;
    }
}

/* 0, or why the file cannot be opened for appending. spdlog's exception carries the reason as text only,
 * comes after several attempts, and it would have made missing folders. */
int open_error(const char* path) {
    std::FILE* const file = std::fopen(path, "ab");
    if (file == nullptr) {
        return errno;
    }
    std::fclose(file);
    return 0;
}

void close_on_exec(const spdlog::filename_t& /*path*/, std::FILE* file) {
    fcntl(fileno(file), F_SETFD, FD_CLOEXEC);
}

} // namespace

extern "C" {

void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt, ...) {
    if (!is_kept(level)) {
        return;
    }
    const CallerKeptAsItWas kept;
    try {
        spdlog::memory_buf_t text;
        text.resize(text.capacity());
        va_list args;
        va_start(args, fmt);
        const std::size_t size = format_into(text, fmt, args);
        va_end(args);
        if (size > text.size()) {
            text.resize(size);
            va_start(args, fmt);
            format_into(text, fmt, args);
            va_end(args);
        }
        const std::string_view whole =
            size == 0 ? std::string_view(fmt) : std::string_view(text.data(), size - 1);
        Log::instance().write(level, file, line, whole);
    } catch (...) {
        return; /* the line is lost, the caller must not be */
    }
}

int qzoci_log_is_on(log_level level) {
    return is_kept(level) ? 1 : 0;
}

int qzoci_log_set_level(int level) {
    if (!is_threshold(level)) {
        return EINVAL;
    }
    return status_of([level] { Log::instance().set_level(level); });
}

int qzoci_log_get_level(void) {
    int level = default_level;
    status_of([&level] { level = Log::instance().level(); });
    return level;
}

int qzoci_log_to_stderr(void) {
    return status_of(
        [] { Log::instance().switch_to(text_log(std::make_shared<spdlog::sinks::stderr_sink_st>())); });
}

int qzoci_log_to_file(const char* path) {
    if (path == nullptr) {
        return EINVAL;
    }
    const CallerKeptAsItWas kept;
    if (const int error = open_error(path); error != 0) {
        return error;
    }
    return status_of([path] {
        spdlog::file_event_handlers handlers;
        handlers.after_open = close_on_exec;
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_st>(path, false, handlers);
        Log::instance().switch_to(text_log(std::move(sink)));
    });
}

int qzoci_log_to_callback(qzoci_log_callback callback, void* user) {
    if (callback == nullptr) {
        return EINVAL;
    }
    return status_of([callback, user] {
        Log::instance().switch_to(std::shared_ptr<Receiver>(new Receiver{callback, user}));
    });
}

int qzoci_log_to_none(void) {
    return status_of([] { Log::instance().switch_to(std::monostate{}); });
}

} // extern "C"
