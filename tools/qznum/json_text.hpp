/* Strings as JSON writes them. */
#ifndef QZNUM_JSON_TEXT_HPP
#define QZNUM_JSON_TEXT_HPP

#include <string>
#include <string_view>

namespace qznum {

/* Appends the text in quotes, escaped; bytes that are not UTF-8 as U+FFFD. */
void append_json_string(std::string& out, std::string_view text);

} // namespace qznum

#endif /* QZNUM_JSON_TEXT_HPP */
