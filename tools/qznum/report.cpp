#include "report.hpp"

#include "json_text.hpp"

namespace qznum {

void Report::count(std::string_view name, std::size_t count) {
    entries_.push_back({std::string(name), std::to_string(count), true});
}

void Report::value(std::string_view name, std::string_view value) {
    entries_.push_back({std::string(name), std::string(value), false});
}

void Report::print(Output& output, bool json) const {
    std::string object;
    for (const Entry& entry : entries_) {
        if (!json) {
            output.result("{}: {}", entry.name, entry.text);
            continue;
        }
        object += object.empty() ? '{' : ',';
        append_json_string(object, entry.name);
        object += ':';
        if (entry.is_count) {
            object += entry.text;
        } else {
            append_json_string(object, entry.text);
        }
    }
    if (json) {
        output.write_result(object + '}');
    }
}

} // namespace qznum
