/* The levels of the fast kernels, for tests that run with each. */
#ifndef QZOCI_TESTS_LIMBS_LEVELS_H
#define QZOCI_TESTS_LIMBS_LEVELS_H

#include "qzoci/limbs/limbs.h"

#include <gtest/gtest.h>

#include <string>

namespace qzoci::test {

/* Runs with the kernels of the level, or of the best one below that this CPU and build have. */
class Levels : public testing::TestWithParam<limbs::Level> {
protected:
    void SetUp() override { level_ = limbs::force_level(GetParam()); }

    void TearDown() override { limbs::force_level(limbs::best_level()); }

    limbs::Level level_ = limbs::Level::portable;
};

inline constexpr limbs::Level all_levels[] = {limbs::Level::portable, limbs::Level::avx2,
                                              limbs::Level::avx512};

inline std::string level_name(const testing::TestParamInfo<limbs::Level>& level) {
    switch (level.param) {
    case limbs::Level::portable:
        return "portable";
    case limbs::Level::avx2:
        return "avx2";
    case limbs::Level::avx512:
        return "avx512";
    }
    return "";
}

} // namespace qzoci::test

#endif /* QZOCI_TESTS_LIMBS_LEVELS_H */
