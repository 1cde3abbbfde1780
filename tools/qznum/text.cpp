#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace qznum {

namespace {

constexpr std::size_t longest_quote = 60;
constexpr std::size_t longest_context = 30; /* on either side of a caret */
constexpr std::string_view blanks = " \t\r\n\v\f";
constexpr std::string_view omission = "...";

bool is_control(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

bool continues_code_point(char c) {
    return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

std::string printable(std::string_view text) {
    std::string shown(text);
    std::replace_if(shown.begin(), shown.end(), is_control, '?');
    return shown;
}

/* The nearest position at or before this one where a code point starts. */
std::size_t code_point_start(std::string_view text, std::size_t position) {
    while (position > 0 && position < text.size() && continues_code_point(text[position])) {
        --position;
    }
    return position;
}

std::size_t code_point_count(std::string_view text) {
    return text.size() -
           static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continues_code_point));
}

} // namespace

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string quoted(std::string_view text) {
    if (text.size() <= longest_quote) {
        return fmt::format("'{}'", printable(text));
    }
    return fmt::format("'{}{}'", printable(text.substr(0, code_point_start(text, longest_quote))), omission);
}

std::string caret_under(std::string_view text, std::size_t position) {
    const std::size_t first = code_point_start(text, position - std::min(position, longest_context));
    const std::size_t last = code_point_start(text, std::min(text.size(), position + longest_context));
    const std::string_view cut_before = first > 0 ? omission : std::string_view{};
    const std::string_view cut_after = last < text.size() ? omission : std::string_view{};
    const std::size_t column = cut_before.size() + code_point_count(text.substr(first, position - first));
    return fmt::format("  {}{}{}\n  {:>{}}", cut_before, printable(text.substr(first, last - first)),
                       cut_after, '^', column + 1);
}

} // namespace qznum
