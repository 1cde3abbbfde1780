/* The values that decode and encode work on: arguments, or lines of a file or of standard input. */
#ifndef QZNUM_VALUES_HPP
#define QZNUM_VALUES_HPP

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

/* One value as it was written, without blanks around it. */
struct Value {
    std::string where; /* for messages: the quoted text, after "file:line: " when it comes from a line */
    std::string label; /* empty: none */
    std::string text;

    /* A result as it is shown beside this value's label. */
    std::string labelled(std::string_view result) const;
};

/* A source of values, one after the other.
 *
 * A line is "VALUE" or "LABEL: VALUE", the label being all up to the last colon; '#' starts a comment that
 * goes on to the end of the line; lines without a value and a label are passed over. */
class Values {
public:
    virtual ~Values() = default;

    /* The next value, or nothing after the last. Throws IoError. */
    virtual std::optional<Value> next() = 0;
};

/* The arguments if there are any; else the lines of the file, "-" and no name meaning standard input. Throws
 * IoError when the file cannot be opened, and UsageError when nothing is given and standard input is a
 * terminal. */
std::unique_ptr<Values> open_values(std::vector<std::string> arguments, const std::string& file_name);

} // namespace qznum

#endif /* QZNUM_VALUES_HPP */
