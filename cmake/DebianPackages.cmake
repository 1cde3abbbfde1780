# Debian packages by cpack: libqzoci0, libqzoci-dev and qznum, one for each component of Install.cmake. `./dev packages`
# configures the build they are made of, with Debian's own compiler flags and below /usr.
set(debian ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian)
set(revision 1)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL qzoci_runtime qzoci_development qzoci_tool)
# Each package's description has its own first line.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The qzoci developers <developers@qzoci.example>")
set(CPACK_DEBIAN_PACKAGE_SOURCE qzoci)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_QZOCI_RUNTIME_PACKAGE_NAME libqzoci0)
set(CPACK_DEBIAN_QZOCI_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_QZOCI_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/triggers)
set(CPACK_DEBIAN_QZOCI_RUNTIME_DESCRIPTION
    "exact-decimal arithmetic on stored 22-byte numbers
Unpacks numbers from their stored form of up to 22 bytes into records of 160
decimal digits before the point and 160 after it, computes on records, from
sums to powers, and packs results back. Uses the stack alone and keeps no
state; the host program brings the logging function.")

set(CPACK_DEBIAN_QZOCI_DEVELOPMENT_PACKAGE_NAME libqzoci-dev)
set(CPACK_DEBIAN_QZOCI_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_QZOCI_DEVELOPMENT_PACKAGE_DEPENDS
    "libqzoci0 (= ${PROJECT_VERSION}-${revision}), libexpected-dev, libspdlog-dev")
set(CPACK_DEBIAN_QZOCI_DEVELOPMENT_DESCRIPTION
    "exact-decimal arithmetic on stored 22-byte numbers (development files)
The headers, the static library, the C++ layer, a ready logging function, and
what CMake and pkg-config find them by.")

set(CPACK_DEBIAN_QZOCI_TOOL_PACKAGE_NAME qznum)
set(CPACK_DEBIAN_QZOCI_TOOL_PACKAGE_SECTION math)
set(CPACK_DEBIAN_QZOCI_TOOL_DESCRIPTION
    "exact-decimal arithmetic on stored 22-byte numbers (command-line tool)
Decodes and encodes stored numbers of up to 22 bytes, and evaluates
expressions on them with 160 decimal digits on either side of the point.")

# qzoci_install_compressed(<file> <name> <folder> <component>): gzipped as Debian wants it, without name and date.
find_program(QZOCI_GZIP gzip REQUIRED)
function(qzoci_install_compressed file name folder component)
    set(compressed ${CMAKE_CURRENT_BINARY_DIR}/${component}/${name}.gz)
    execute_process(COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/${component})
    execute_process(COMMAND ${QZOCI_GZIP} -9nc ${file} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    install(FILES ${compressed} DESTINATION ${folder} COMPONENT ${component})
endfunction()

# The files that every package has.
function(qzoci_debian_files package component)
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${package})
    install(FILES ${debian}/copyright DESTINATION ${folder} COMPONENT ${component})
    qzoci_install_compressed(${debian}/changelog changelog.Debian ${folder} ${component})
    qzoci_install_compressed(${CMAKE_CURRENT_SOURCE_DIR}/CHANGELOG.md changelog ${folder} ${component})
    if(EXISTS ${debian}/${package}.lintian-overrides)
        install(
            FILES ${debian}/${package}.lintian-overrides
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
            COMPONENT ${component}
            RENAME ${package})
    endif()
endfunction()
qzoci_debian_files(libqzoci0 qzoci_runtime)
qzoci_debian_files(libqzoci-dev qzoci_development)
qzoci_debian_files(qznum qzoci_tool)
add_custom_target(
    qznum_compressed_manual ALL
    COMMAND ${QZOCI_GZIP} -9nc ${qznum_manual} > ${qznum_manual}.gz
    VERBATIM)
add_dependencies(qznum_compressed_manual qznum_pages)
install(
    FILES ${qznum_manual}.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT qzoci_tool)

# As Debian strips. qzoci_strip(<component> <pattern> <flag>...): the files of the pattern below the prefix
function(qzoci_strip component pattern)
    install(
        CODE "file(GLOB files \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${pattern}\")
execute_process(COMMAND ${CMAKE_STRIP} --remove-section=.comment --remove-section=.note ${ARGN} \${files}
                COMMAND_ERROR_IS_FATAL ANY)"
        COMPONENT ${component})
endfunction()
qzoci_strip(qzoci_runtime ${CMAKE_INSTALL_LIBDIR}/*.so.${PROJECT_VERSION} --strip-unneeded)
qzoci_strip(qzoci_development ${CMAKE_INSTALL_LIBDIR}/*.a "--strip-debug --enable-deterministic-archives")
qzoci_strip(qzoci_tool ${CMAKE_INSTALL_BINDIR}/qznum --strip-all)

include(CPack)
