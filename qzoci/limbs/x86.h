/* What the files of vector kernels share. */
#ifndef QZOCI_LIMBS_X86_H
#define QZOCI_LIMBS_X86_H

/* Vector kernels are in the build where the compiler knows the instructions and nobody asked to leave them
 * out. */
#if defined(__x86_64__) && defined(__GNUC__) && !defined(QZOCI_NO_SIMD)
#define QZOCI_HAS_X86_KERNELS 1
#else
#define QZOCI_HAS_X86_KERNELS 0
#endif

/* Each function in AVX2 carries the instruction set itself, so that no other file's code is compiled for it. */
#define QZOCI_AVX2 __attribute__((target("avx2,bmi,bmi2")))

/* Before a loop over the vectors of an array. A compiler that meets it rolled up keeps the array in memory,
 * and copies it in pieces that it cannot load back at once. */
#if defined(__clang__)
#define QZOCI_UNROLLED _Pragma("unroll")
#else
#define QZOCI_UNROLLED _Pragma("GCC unroll 8")
#endif

#endif /* QZOCI_LIMBS_X86_H */
