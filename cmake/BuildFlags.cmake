# Flags that every target of the project is built with: qzoci_build_flags(<target>).

add_library(qzoci_build_flags INTERFACE)
if(QZOCI_DEVELOPER_MODE)
    target_compile_options(
        qzoci_build_flags
        INTERFACE -Wall
                  -Wextra
                  -Wpedantic
                  -Wconversion
                  -Wshadow
                  -Wundef
                  -Werror)
    # GCC 12 takes joined strings for overlapping ones at -O3 (GCC bug 105329).
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(qzoci_build_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
    endif()
endif()
if(QZOCI_SANITIZE)
    target_compile_options(
        qzoci_build_flags INTERFACE -fsanitize=${QZOCI_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(qzoci_build_flags INTERFACE -fsanitize=${QZOCI_SANITIZE})
endif()
if(QZOCI_COVERAGE)
    target_compile_options(qzoci_build_flags INTERFACE --coverage)
    target_link_options(qzoci_build_flags INTERFACE --coverage)
endif()

# __FILE__ is the path below the project's root, whatever the build folder and whoever includes the project.
target_compile_options(qzoci_build_flags INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

function(qzoci_build_flags target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:qzoci_build_flags>)
endfunction()
