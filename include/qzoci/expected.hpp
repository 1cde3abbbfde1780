/* qzoci::expected: a value or an error. std::expected where the library has it, its forerunner tl::expected
 * elsewhere. The forerunner's -> is no constant expression; * and value() are. */
#ifndef QZOCI_EXPECTED_HPP
#define QZOCI_EXPECTED_HPP

#include <version>

#if defined(__cpp_lib_expected)
#include <expected>
#include <utility>
#else
#include <tl/expected.hpp>
#endif

namespace qzoci {

#if defined(__cpp_lib_expected)
using std::expected;
using std::in_place;
using std::unexpected;
#else
using tl::expected;
using tl::in_place;
using tl::unexpected;
#endif

} // namespace qzoci

#endif /* QZOCI_EXPECTED_HPP */
