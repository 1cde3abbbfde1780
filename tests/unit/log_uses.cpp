#include "tests/unit/log_uses.h"

#include "tests/support/records.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace qzoci::test {
namespace {

constexpr std::string_view malformed_format = "%s get a malformed record";
constexpr std::string_view exit_trace_format = "function %s return with status %d";

struct Writer {
    std::string_view name;
    std::optional<size_t> format_argument; /* none: the format is malformed_format */
};

constexpr Writer writers[] = {
    {"QZOCI_DEBUG(", 1}, {"QZOCI_ERROR(", 0}, {"QZOCI_FORWARD(", 1}, {"QZOCI_MALFORMED(", {}}, {"puts(", 0}};

bool is_name_character(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/* The string literals of each argument, joined; rest begins after the opening parenthesis, and its part up to
 * the closing one is taken off it. */
std::vector<std::string> literals_of_arguments(std::string_view& rest) {
    std::vector<std::string> literals(1);
    bool in_literal = false;
    for (int depth = 1; depth > 0; rest.remove_prefix(1)) {
        if (rest.empty()) {
            throw std::runtime_error("a use that does not end");
        }
        const char c = rest.front();
        if (c == '"') {
            in_literal = !in_literal;
        } else if (in_literal) {
            literals.back() += c;
        } else if (c == '(' || c == ')') {
            depth += c == '(' ? 1 : -1;
        } else if (c == ',' && depth == 1) {
            literals.emplace_back();
        }
    }
    return literals;
}

long line_number(std::string_view source, size_t position) {
    return 1 + std::count(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(position), '\n');
}

bool comes_from(const CapturedLine& line, const LogUse& use) {
    if (!line.level) {
        return use.format == line.text;
    }
    return use.file == line.file && use.first_line <= line.line && line.line <= use.last_line &&
           use.format == line.format;
}

std::string place(const LogUse& use) {
    return use.file + ":" + std::to_string(use.first_line) + " \"" + use.format + "\"";
}

} // namespace

std::vector<LogUse> log_uses(std::string_view source, const std::string& file) {
    std::vector<LogUse> uses;
    for (const Writer& writer : writers) {
        for (size_t at = source.find(writer.name); at != std::string_view::npos;
             at = source.find(writer.name, at + 1)) {
            if (at > 0 && is_name_character(source[at - 1])) {
                continue;
            }
            std::string_view rest = source.substr(at + writer.name.size());
            const std::vector<std::string> literals = literals_of_arguments(rest);
            std::string format(malformed_format);
            if (writer.format_argument) {
                format = *writer.format_argument < literals.size() ? literals[*writer.format_argument] : "";
            }
            if (format.empty()) {
                throw std::runtime_error(file + ": a use without a format");
            }
            uses.push_back(
                {file, line_number(source, at), line_number(source, source.size() - rest.size()), format});
        }
    }
    return uses;
}

std::vector<LogUse> log_uses_below(const std::filesystem::path& folder) {
    std::vector<LogUse> uses;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".cpp") {
            const std::string file = entry.path().lexically_relative(folder.parent_path()).generic_string();
            const std::vector<LogUse> of_file = log_uses(text_of_file(entry.path()), file);
            uses.insert(uses.end(), of_file.begin(), of_file.end());
        }
    }
    return uses;
}

std::vector<UnprovokableLine> unprovokable_lines(std::string_view markdown) {
    constexpr std::string_view row_start = "| `";
    constexpr std::string_view between = "` | ";
    constexpr std::string_view row_end = " |";
    std::vector<UnprovokableLine> lines;
    for (std::string_view row : split(markdown, '\n')) {
        const size_t middle = row.find(between);
        if (row.starts_with(row_start) && row.ends_with(row_end) && middle != std::string_view::npos) {
            const size_t reason = middle + between.size();
            const size_t end = std::max(row.size() - row_end.size(), reason);
            lines.push_back({std::string(row.substr(row_start.size(), middle - row_start.size())),
                             std::string(row.substr(reason, end - reason))});
        }
    }
    return lines;
}

std::string text_of_file(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> complaints(std::span<const LogUse> uses, std::span<const CapturedLine> lines,
                                    std::span<const UnprovokableLine> unprovokable) {
    std::vector<std::string> found;
    for (const CapturedLine& line : lines) {
        const bool known =
            line.format == exit_trace_format ||
            std::any_of(uses.begin(), uses.end(), [&](const LogUse& use) { return comes_from(line, use); });
        if (!known) {
            found.push_back("from no known place: " + line.rendered());
        }
    }
    for (const LogUse& use : uses) {
        const bool reached = std::any_of(lines.begin(), lines.end(),
                                         [&](const CapturedLine& line) { return comes_from(line, use); });
        const bool listed =
            std::any_of(unprovokable.begin(), unprovokable.end(),
                        [&](const UnprovokableLine& line) { return line.format == use.format; });
        if (!reached && !listed) {
            found.push_back("neither provoked nor listed: " + place(use));
        } else if (reached && listed) {
            found.push_back("listed although provoked: " + place(use));
        }
    }
    for (const UnprovokableLine& line : unprovokable) {
        if (std::none_of(uses.begin(), uses.end(),
                         [&](const LogUse& use) { return use.format == line.format; })) {
            found.push_back("listed but in no source: " + line.format);
        }
        if (line.reason.empty()) {
            found.push_back("listed without a reason: " + line.format);
        }
    }
    return found;
}

} // namespace qzoci::test
