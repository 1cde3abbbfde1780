#include "json_text.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace qznum {

void append_json_string(std::string& out, std::string_view text) {
    const auto is_plain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
    if (std::all_of(text.begin(), text.end(), is_plain)) {
        out += '"';
        out += text;
        out += '"';
        return;
    }
    out += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace qznum
