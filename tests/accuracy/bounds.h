/* How far results may be off. functions.cpp names the arguments that each bound is for. docs/accuracy.md
 * quotes both numbers from here. */
#ifndef QZOCI_TESTS_ACCURACY_BOUNDS_H
#define QZOCI_TESTS_ACCURACY_BOUNDS_H

#include <string_view>

namespace qzoci::test::accuracy {

/* Of all results but this share the error is at most the usual one. */
inline constexpr double unusual_share = 0.05;

/* Errors in units of 10^-160 times what the error grows with. Both are at least twice what was measured. */
struct Bound {
    std::string_view name;
    double usual;
    double largest; /* mostly of results on whose way a product's last limb became 1 for 99999999 */
};

inline constexpr Bound sqrt_bound{"sqrt_bound", 1.5, 5e9};
inline constexpr Bound sin_bound{"sin_bound", 4, 1e8};
inline constexpr Bound sin_huge_bound{"sin_huge_bound", 0.6, 1};
inline constexpr Bound cos_bound{"cos_bound", 6, 1e8};
inline constexpr Bound cos_huge_bound{"cos_huge_bound", 0.6, 1};
inline constexpr Bound tan_bound{"tan_bound", 5, 1e8};
inline constexpr Bound tan_steep_bound{"tan_steep_bound", 1.2, 10};
inline constexpr Bound sinr_bound{"sinr_bound", 0, 0};
inline constexpr Bound sinr_huge_bound{"sinr_huge_bound", 0.6, 2};
inline constexpr Bound cosr_bound{"cosr_bound", 0, 0};
inline constexpr Bound cosr_huge_bound{"cosr_huge_bound", 0.6, 2};
inline constexpr Bound tanr_bound{"tanr_bound", 1, 1};
inline constexpr Bound tanr_huge_bound{"tanr_huge_bound", 1.2, 3};
inline constexpr Bound atan_bound{"atan_bound", 70, 5e8};
inline constexpr Bound atan_huge_bound{"atan_huge_bound", 2, 3};
inline constexpr Bound asin_bound{"asin_bound", 16, 5e8};
inline constexpr Bound acos_bound{"acos_bound", 16, 5e8};
inline constexpr Bound atan2_bound{"atan2_bound", 60, 5e8};
inline constexpr Bound atan2_steep_bound{"atan2_steep_bound", 2, 3};
inline constexpr Bound exp_bound{"exp_bound", 100, 5e9};
inline constexpr Bound sinh_bound{"sinh_bound", 200, 5e9};
inline constexpr Bound sinh_negative_bound{"sinh_negative_bound", 4, 1e9};
inline constexpr Bound sinh_very_negative_bound{"sinh_very_negative_bound", 0.6, 1};
inline constexpr Bound cosh_bound{"cosh_bound", 200, 5e9};
inline constexpr Bound cosh_negative_bound{"cosh_negative_bound", 2, 1e9};
inline constexpr Bound cosh_very_negative_bound{"cosh_very_negative_bound", 0.6, 1};
inline constexpr Bound tanh_bound{"tanh_bound", 4, 2e9};
inline constexpr Bound ln_bound{"ln_bound", 250, 1e9};
inline constexpr Bound ipow_bound{"ipow_bound", 1, 1e9};
inline constexpr Bound ipow_negative_bound{"ipow_negative_bound", 1, 1e9};
inline constexpr Bound ipow_large_reciprocal_bound{"ipow_large_reciprocal_bound", 1, 1e9};
inline constexpr Bound pow_bound{"pow_bound", 250, 1e10};

} // namespace qzoci::test::accuracy

#endif /* QZOCI_TESTS_ACCURACY_BOUNDS_H */
