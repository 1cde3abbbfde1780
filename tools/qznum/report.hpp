/* What a command found out about all rows: named values, a line each or as one JSON object. */
#ifndef QZNUM_REPORT_HPP
#define QZNUM_REPORT_HPP

#include "output.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

class Report {
public:
    /* Counts are numbers in JSON; all else, numbers among it, are strings. */
    void count(std::string_view name, std::size_t count);
    void value(std::string_view name, std::string_view value);

    void print(Output& output, bool json) const;

private:
    struct Entry {
        std::string name;
        std::string text;
        bool is_count;
    };

    std::vector<Entry> entries_;
};

} // namespace qznum

#endif /* QZNUM_REPORT_HPP */
