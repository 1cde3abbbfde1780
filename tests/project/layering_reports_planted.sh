#!/usr/bin/env bash
# The layering checks find each fault planted in a tree and in archives.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

mkdir -p tree/{qzoci/limbs,log,include/qzoci,tools/qznum,examples,tests/project/host}
cp "$SOURCE"/qzoci/*.h tree/qzoci
cp "$SOURCE"/qzoci/limbs/*.h tree/qzoci/limbs
echo >tree/qzoci/limbs/product.h
plant() {
    printf '#include %s\n' "$2" >>"tree/$1"
}
plant qzoci/limbs/product.cpp '"qzoci/limbs/product.h"' # allowed, as are the next two
plant qzoci/limbs/product.cpp '<immintrin.h>'
plant qzoci/oci_calc_number_arithmetic.cpp '"qzoci/oci_calc_number_model.h"'
"$SOURCE/tests/project/layering_includes.sh" tree || fail "a tree without fault is reported"

plant qzoci/limbs/product.cpp '"qzoci/oci_calc_number.h"'
plant qzoci/oci_log.h '"qzoci/oci_types.h"'
plant qzoci/oci_calc_number.h '"qzoci/oci_calc_number_internal.h"'
plant qzoci/oci_calc_number_model.cpp '"qzoci/oci_calc_number_arithmetic.h"'
plant qzoci/oci_calc_number_model.cpp '<immintrin.h>'
plant qzoci/oci_calc_number_arithmetic.cpp '<spdlog/spdlog.h>'
plant qzoci/unknown.cpp '"qzoci/oci_types.h"'
plant log/sink.cpp '"qzoci/oci_calc_number.h"'
plant include/qzoci/decimal.hpp '"qzoci/oci_calc_number_internal.h"'
plant tools/qznum/main.cpp '"../../qzoci/oci_calc_number_model.h"'
plant examples/ledger.c '<qzoci/oci_calc_number_trace.h>'
plant tests/project/host/main.c '"qzoci/oci_calc_number_internal.h"'
if "$SOURCE/tests/project/layering_includes.sh" tree >findings; then
    fail "the faulty tree passes"
fi
expect_equal "reported includes" "\
examples/ledger.c includes qzoci/oci_calc_number_trace.h
include/qzoci/decimal.hpp includes qzoci/oci_calc_number_internal.h
log/sink.cpp includes qzoci/oci_calc_number.h
qzoci/limbs/product.cpp includes qzoci/oci_calc_number.h
qzoci/oci_calc_number.h includes qzoci/oci_calc_number_internal.h
qzoci/oci_calc_number_arithmetic.cpp includes spdlog/spdlog.h
qzoci/oci_calc_number_model.cpp includes immintrin.h
qzoci/oci_calc_number_model.cpp includes qzoci/oci_calc_number_arithmetic.h
qzoci/oci_log.h includes qzoci/oci_types.h
qzoci/unknown.cpp includes qzoci/oci_types.h
tests/project/host/main.c includes qzoci/oci_calc_number_internal.h
tools/qznum/main.cpp includes qzoci/oci_calc_number_model.h" "$(sort findings)"

# object NAME SOURCE
object() {
    "$CC" -x c -c -o "$1.o" - <<<"$2"
}
object product 'void model(void); void qzoci_log_inner(void); void product(void) { model(); qzoci_log_inner(); }'
object oci_calc_number_model 'void power(void); void model(void) { power(); }'
object oci_calc_number_arithmetic 'void model(void); void power(void); void add(void) { model(); power(); }'
object oci_calc_number_elementary 'void model(void); void add(void); void power(void) { model(); add(); }'
object log 'void add(void); void qzoci_log_inner(void) { add(); }'
ar rc engine.a product.o oci_calc_number_*.o
ar rc log.a log.o
if "$SOURCE/tests/project/layering_symbols.sh" engine.a log.a >findings; then
    fail "the faulty archives pass"
fi
expect_equal "reported references" "\
oci_calc_number_arithmetic.o refers to power of a higher layer
oci_calc_number_model.o refers to power of a higher layer
product.o refers to model of a higher layer
product.o refers to qzoci_log_inner of the host
the logging library refers to add" "$(sort findings)"
