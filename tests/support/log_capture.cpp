#include "tests/support/log_capture.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace qzoci::test {
namespace {

thread_local LogCapture* innermost_capture = nullptr;
thread_local bool debug_lines_kept = true;
thread_local LineAction* line_action = nullptr;

/* A va_list that functions can hand on and consume in turn. */
struct VariadicArguments {
    va_list list;
};

/* The widths that the engine asks for are a few digits. */
template <typename Value>
std::string formatted(const std::string& conversion, Value value) {
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), conversion.c_str(), value);
    return text.data();
}

/* conversion: one whole conversion specification, such as "%08d". The engine's contract names those it uses;
 * any other shows in the text. */
std::string convert(const std::string& conversion, VariadicArguments& arguments, const PointerNames& names) {
    const bool is_long = conversion.size() > 2 && conversion[conversion.size() - 2] == 'l';
    switch (conversion.back()) {
    case 'p':
        return {names(va_arg(arguments.list, const void*))};
    case 'd':
    case 'i':
        return is_long ? formatted(conversion, va_arg(arguments.list, long))
                       : formatted(conversion, va_arg(arguments.list, int));
    case 'u':
        return is_long ? formatted(conversion, va_arg(arguments.list, unsigned long))
                       : formatted(conversion, va_arg(arguments.list, unsigned));
    case 's':
        return va_arg(arguments.list, const char*);
    default:
        return "<no conversion " + conversion + ">";
    }
}

std::string render(const char* format, VariadicArguments& arguments, const PointerNames& names) {
    std::string text;
    text.reserve(120); /* nearly every line fits */
    for (const char* rest = format;;) {
        const size_t literal = std::strcspn(rest, "%");
        text.append(rest, literal);
        rest += literal;
        if (*rest == '\0') {
            return text;
        }
        const size_t before_letter = 1 + std::strspn(rest + 1, "-+ #.0123456789l");
        const std::string conversion(rest, strnlen(rest, before_letter + 1));
        text += convert(conversion, arguments, names);
        rest += conversion.size();
    }
}

} // namespace

char PointerNames::operator()(const void* pointer) const {
    if (pointer == nullptr) {
        return '0';
    }
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [pointer](const auto& entry) { return entry.first == pointer; });
    return found == names_.end() ? 'S' : found->second;
}

std::string CapturedLine::rendered() const {
    return (level ? std::to_string(*level) : "out") + "|" + text;
}

LogCapture::LogCapture(PointerNames names, LineFilter filter)
    : outer_(innermost_capture), names_(std::move(names)), filter_(filter) {
    innermost_capture = this;
}

LogCapture::~LogCapture() {
    innermost_capture = outer_;
}

void LogCapture::record_log(log_level level, const char* file, long line, const char* format,
                            std::string text) {
    lines_.push_back({level, file, line, format, std::move(text)});
}

void LogCapture::record_standard_output(const char* text) {
    lines_.push_back({std::nullopt, "", 0, "", text});
}

LineAction::LineAction(std::function<void()> action) : action_(std::move(action)) {
    line_action = this;
}

LineAction::~LineAction() {
    line_action = nullptr;
}

void LineAction::run() {
    if (!running_) {
        running_ = true;
        action_();
        running_ = false;
    }
}

std::vector<std::string> rendered(std::span<const CapturedLine> lines) {
    std::vector<std::string> texts;
    std::transform(lines.begin(), lines.end(), std::back_inserter(texts),
                   [](const CapturedLine& line) { return line.rendered(); });
    return texts;
}

std::vector<CapturedLine> without_debug(std::span<const CapturedLine> lines) {
    std::vector<CapturedLine> kept;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(kept),
                 [](const CapturedLine& line) { return !line.is_debug(); });
    return kept;
}

ub8 digest(std::span<const CapturedLine> lines) {
    constexpr ub8 offset_basis = 0xcbf29ce484222325;
    constexpr ub8 prime = 0x100000001b3;
    ub8 hash = offset_basis;
    for (const CapturedLine& line : lines) {
        for (const char c : line.rendered() + "\n") {
            hash = (hash ^ static_cast<unsigned char>(c)) * prime;
        }
    }
    return hash;
}

DebugLinesKept::DebugLinesKept(bool kept) : outer_(debug_lines_kept) {
    debug_lines_kept = kept;
}

DebugLinesKept::~DebugLinesKept() {
    debug_lines_kept = outer_;
}

} // namespace qzoci::test

using qzoci::test::innermost_capture;
using qzoci::test::line_action;

/* The engine refers to both functions; they stand in one object file, as the header asks of a host. */
void qzoci_log_inner(log_level level, const char* file, const long line, const char* fmt, ...) {
    if (line_action != nullptr) {
        line_action->run();
    }
    if (innermost_capture == nullptr || !innermost_capture->keeps(level, fmt)) {
        return;
    }
    qzoci::test::VariadicArguments arguments;
    va_start(arguments.list, fmt);
    innermost_capture->record_log(level, file, line, fmt,
                                  qzoci::test::render(fmt, arguments, innermost_capture->names()));
    va_end(arguments.list);
}

int qzoci_log_is_on(log_level /* level */) {
    if (innermost_capture != nullptr) {
        innermost_capture->record_question();
    }
    return qzoci::test::debug_lines_kept ? 1 : 0;
}

extern "C" {
int __real_puts(const char* text);
int __wrap_puts(const char* text);
}

/* Every call of puts in an executable linked with --wrap=puts arrives here. */
int __wrap_puts(const char* text) {
    if (innermost_capture == nullptr) {
        return __real_puts(text);
    }
    innermost_capture->record_standard_output(text);
    return 0;
}
