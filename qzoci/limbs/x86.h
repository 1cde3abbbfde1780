/* Whether vector kernels are in the build: where the compiler knows the instructions and nobody asked to leave
 * them out. */
#ifndef QZOCI_LIMBS_X86_H
#define QZOCI_LIMBS_X86_H

#if defined(__x86_64__) && defined(__GNUC__) && !defined(QZOCI_NO_SIMD)
#define QZOCI_HAS_X86_KERNELS 1
#else
#define QZOCI_HAS_X86_KERNELS 0
#endif

#endif /* QZOCI_LIMBS_X86_H */
