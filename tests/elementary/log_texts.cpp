#include "tests/elementary/log_texts.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace qzoci::test {
namespace {

/* Of a name, or of a whole text that the step takes as an argument. */
constexpr std::string_view name_conversion = "%s";

bool remove_prefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

void skip_past(std::string_view& source, std::string_view end) {
    const size_t at = source.find(end);
    if (at == std::string_view::npos) {
        throw std::runtime_error("no end: " + std::string(end));
    }
    source.remove_prefix(at + end.size());
}

/* The literal whose opening quote was taken; no literal here has an escaped quote. */
std::string take_literal(std::string_view& source) {
    const std::string_view start = source;
    skip_past(source, "\"");
    return std::string(start.substr(0, start.size() - source.size() - 1));
}

std::vector<std::string> literals_in(std::string_view source) {
    std::vector<std::string> literals;
    bool joins = false; /* only white space since the last literal */
    while (!source.empty()) {
        if (remove_prefix(source, "/*")) {
            skip_past(source, "*/");
        } else if (remove_prefix(source, "//")) {
            skip_past(source, "\n");
        } else if (remove_prefix(source, "\"")) {
            const std::string literal = take_literal(source);
            if (!joins) {
                literals.emplace_back();
            }
            literals.back() += literal;
            joins = true;
        } else {
            joins = joins && std::isspace(static_cast<unsigned char>(source.front())) != 0;
            source.remove_prefix(1);
        }
    }
    return literals;
}

} // namespace

std::vector<std::string> formats_in(std::string_view source, std::span<const std::string_view> names) {
    std::vector<std::string> formats;
    for (const std::string& literal : literals_in(source)) {
        std::string_view rest = literal;
        if (rest.find(' ') == std::string_view::npos) {
            continue;
        }
        if (!remove_prefix(rest, name_conversion)) {
            formats.push_back(literal);
            continue;
        }
        for (const std::string_view name : names) {
            formats.push_back(std::string(name) + std::string(rest));
        }
    }
    std::sort(formats.begin(), formats.end());
    formats.erase(std::unique(formats.begin(), formats.end()), formats.end());
    return formats;
}

std::string format_of(const CapturedLine& line) {
    return line.format.starts_with(name_conversion) ? line.text : std::string(line.format);
}

std::vector<std::string> complaints(std::span<const std::string> formats,
                                    const std::set<std::string>& written,
                                    std::span<const UnprovokableLine> unprovokable) {
    std::vector<std::string> found;
    for (const std::string& format : formats) {
        const bool provoked = written.contains(format);
        const bool listed = std::any_of(unprovokable.begin(), unprovokable.end(),
                                        [&](const UnprovokableLine& line) { return line.format == format; });
        if (!provoked && !listed) {
            found.push_back("neither provoked nor listed: " + format);
        } else if (provoked && listed) {
            found.push_back("listed although provoked: " + format);
        }
    }
    for (const UnprovokableLine& line : unprovokable) {
        if (std::find(formats.begin(), formats.end(), line.format) == formats.end()) {
            found.push_back("listed but not in the source: " + line.format);
        }
        if (line.reason.empty()) {
            found.push_back("listed without a reason: " + line.format);
        }
    }
    return found;
}

} // namespace qzoci::test
