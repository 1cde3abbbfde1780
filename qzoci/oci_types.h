/* Scalar types, status values and the stored number of the OCI number interface.
 *
 * A host library that already has these names defines the guard macro of each one it brings
 * (QZOCI_HAVE_<name>) before including any header of this project; its own definition must have the
 * width, signedness and value stated here. */
#ifndef QZOCI_OCI_TYPES_H
#define QZOCI_OCI_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifndef QZOCI_HAVE_ub1
typedef uint8_t ub1; /* unsigned, 8 bits */
#endif
#ifndef QZOCI_HAVE_sb1
typedef int8_t sb1; /* signed, 8 bits */
#endif
#ifndef QZOCI_HAVE_ub4
typedef uint32_t ub4; /* unsigned, 32 bits */
#endif
#ifndef QZOCI_HAVE_sb4
typedef int32_t sb4; /* signed, 32 bits */
#endif
#ifndef QZOCI_HAVE_ub8
typedef uint64_t ub8; /* unsigned, 64 bits */
#endif
#ifndef QZOCI_HAVE_sb8
typedef int64_t sb8; /* signed, 64 bits */
#endif
#ifndef QZOCI_HAVE_sword
typedef int sword; /* the status integer */
#endif
#ifndef QZOCI_HAVE_boolean
typedef int boolean; /* zero: false, anything else: true */
#endif

/* The operation completed. Overflow to infinity and every special-value result also return this. */
#ifndef OCI_SUCCESS
#define OCI_SUCCESS 0
#endif
/* The operation failed on a value: a zero divisor, a malformed record, a failed inner operation. */
#ifndef OCI_ERROR
#define OCI_ERROR (-1)
#endif
/* A required pointer was null. */
#ifndef OCI_INVALID_HANDLE
#define OCI_INVALID_HANDLE (-2)
#endif

/* Size in bytes of a stored number. */
#define QZOCI_NUMBER_SIZE 22

/* A stored number.
 *
 *   byte 0      length L, 1..21: how many of the bytes after it belong to the number
 *   byte 1      exponent byte; above 128: positive, below 128: negative
 *   bytes 2..L  base-100 digit pairs, most significant first, one a byte
 *
 *   zero                L = 1, exponent byte 128 (any L with exponent byte 128 reads as zero)
 *   positive infinity   L = 2, exponent byte 255, byte 2 = 101
 *   negative infinity   L = 1, exponent byte 0
 *   positive            exponent byte 193 + e, byte = pair + 1     (e: base-100 exponent of the first pair)
 *   negative            exponent byte  62 - e, byte = 101 - pair; when fewer than 20 pairs are stored,
 *                       a terminator byte 102 follows the last pair and is counted in L
 *
 * Bytes after L are not part of the number and are neither read nor written. */
#ifndef QZOCI_HAVE_OCINumber
typedef struct OCINumber {
    /* The bytes, as above. */
    ub1 OCINumberPart[QZOCI_NUMBER_SIZE];
} OCINumber;
#endif

#endif /* QZOCI_OCI_TYPES_H */
