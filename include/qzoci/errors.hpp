/** @file
 * Errors as values, and the one exception that carries any of them.
 *
 * Functions that can fail come in two forms: `try_...` and the parsers return an expected<T, error>; the plain form
 * is value_or_throw around it.
 */
#ifndef QZOCI_ERRORS_HPP
#define QZOCI_ERRORS_HPP

#include "qzoci/oci_calc_number.h"

#include <qzoci/expected.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace qzoci {

/** An operation of the engine that returned a status other than OCI_SUCCESS. */
struct operation_error {
    sword status;               /**< OCI_ERROR: a value that the operation does not take */
    std::string_view operation; /**< the function's name in the C header, such as "QZCICalcNumDiv" */

    friend constexpr bool operator==(const operation_error&, const operation_error&) = default;
};

/** The error in words: "QZCICalcNumDiv returned status -1". */
inline std::string message(const operation_error& error) {
    std::string text(error.operation);
    text += " returned status ";
    text += std::to_string(error.status);
    return text;
}

/** An error of the layer, thrown: what() is its message(), error() the value itself.
 *
 * @tparam Error operation_error, number_error, text_error or any other type with a message(const Error&). */
template <typename Error>
class failure : public std::runtime_error {
public:
    /** With the text of message(error). */
    explicit failure(Error error) : std::runtime_error(message(error)), error_(std::move(error)) {}

    /** The value itself, as long as this object lives. */
    const Error& error() const noexcept { return error_; }

private:
    Error error_;
};

/** The value of a result. @throws failure<Error> with the result's error when it has one. */
template <typename T, typename Error>
constexpr T value_or_throw(expected<T, Error> result) {
    if (!result) {
        throw failure<Error>(std::move(result).error());
    }
    return *std::move(result);
}

} // namespace qzoci

#endif /* QZOCI_ERRORS_HPP */
