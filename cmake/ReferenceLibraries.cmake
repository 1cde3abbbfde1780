# The exact integers and the arbitrary precision that tests and benchmark compare with, as the targets GMP::gmpxx and
# MPFR::mpfr: neither library brings a CMake configuration.

function(qzoci_reference_library target header name)
    find_path(${name}_INCLUDE_DIR ${header} REQUIRED)
    find_library(${name}_LIBRARY ${name} REQUIRED)
    mark_as_advanced(${name}_INCLUDE_DIR ${name}_LIBRARY)
    add_library(${target} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${${name}_LIBRARY}
                                               INTERFACE_INCLUDE_DIRECTORIES ${${name}_INCLUDE_DIR})
endfunction()

qzoci_reference_library(GMP::gmp gmp.h gmp)
qzoci_reference_library(GMP::gmpxx gmpxx.h gmpxx)
qzoci_reference_library(MPFR::mpfr mpfr.h mpfr)
target_link_libraries(GMP::gmpxx INTERFACE GMP::gmp)
target_link_libraries(MPFR::mpfr INTERFACE GMP::gmp)
