#include "bench/table.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <utility>

namespace qzoci::bench {

Table::Table(std::vector<std::string> titles, size_t columns_of_words)
    : lines_{std::move(titles)}, columns_of_words_(columns_of_words) {}

void Table::add(std::vector<std::string> cells) {
    lines_.push_back(std::move(cells));
}

std::ostream& operator<<(std::ostream& out, const Table& table) {
    const std::vector<size_t> widths = table.widths();
    std::vector<std::string> rule;
    for (const size_t width : widths) {
        const bool is_left = rule.size() < table.columns_of_words_;
        rule.push_back(std::string(width - 1, '-') + (is_left ? '-' : ':'));
    }
    table.write_line(out, table.lines_.front(), widths);
    table.write_line(out, rule, widths);
    for (size_t i = 1; i < table.lines_.size(); ++i) {
        table.write_line(out, table.lines_[i], widths);
    }
    return out;
}

std::vector<size_t> Table::widths() const {
    constexpr size_t narrowest = 3; /* a rule takes that much */
    std::vector<size_t> widths(lines_.front().size(), narrowest);
    for (const std::vector<std::string>& line : lines_) {
        for (size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], line[i].size());
        }
    }
    return widths;
}

void Table::write_line(std::ostream& out, const std::vector<std::string>& cells,
                       const std::vector<size_t>& widths) const {
    for (size_t i = 0; i < cells.size(); ++i) {
        if (i < columns_of_words_) {
            fmt::print(out, "| {:<{}} ", cells[i], widths[i]);
        } else {
            fmt::print(out, "| {:>{}} ", cells[i], widths[i]);
        }
    }
    fmt::print(out, "|\n");
}

} // namespace qzoci::bench
