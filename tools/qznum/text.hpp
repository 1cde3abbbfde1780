/* Text from outside, made fit for a message. */
#ifndef QZNUM_TEXT_HPP
#define QZNUM_TEXT_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace qznum {

std::string_view trimmed(std::string_view text);

/* In quotes, shortened to one line of a terminal, control characters as '?'. */
std::string quoted(std::string_view text);

/* The part of the text around a position, and under it a caret at the position: two lines, each indented by
 * two blanks. Precondition: position <= text.size(). */
std::string caret_under(std::string_view text, std::size_t position);

} // namespace qznum

#endif /* QZNUM_TEXT_HPP */
