/* The one function of each fuzz target, as libFuzzer and the replay call it. */
#ifndef QZOCI_FUZZ_TARGET_H
#define QZOCI_FUZZ_TARGET_H

#include "qzoci/oci_types.h"

/* Returns 0; aborts on a finding. */
extern "C" int LLVMFuzzerTestOneInput(const ub1* data, size_t size);

#endif /* QZOCI_FUZZ_TARGET_H */
