/* The exit status of the tool, and the exceptions that end it. */
#ifndef QZNUM_EXIT_STATUS_HPP
#define QZNUM_EXIT_STATUS_HPP

#include <stdexcept>

namespace qznum {

enum class ExitStatus : int {
    ok = 0,
    value_error = 1, /* a value or an expression is in error; all others were dealt with */
    wrong_usage = 2,
    io_error = 3
};

/* Input cannot be read or results cannot be written. */
class IoError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/* Whoever read the results has gone. Nothing is said about it: `qznum ... | head` is ordinary. */
class ReaderGone : public IoError {
public:
    ReaderGone() : IoError("nobody reads the results any more") {}
};

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace qznum

#endif /* QZNUM_EXIT_STATUS_HPP */
