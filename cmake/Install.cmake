# Installs what has been configured: the engine always; the logging library, the C++ layer and the tool with
# QZOCI_WITH_TOOL. Components: qzoci_runtime (the shared library), qzoci_development, qzoci_tool.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qzoci)

# An export set of its own for each component of find_package: qzoci_install_targets(<component> <target>...).
function(qzoci_install_targets component)
    install(
        TARGETS ${ARGN}
        EXPORT qzoci_${component}
        LIBRARY COMPONENT qzoci_runtime NAMELINK_COMPONENT qzoci_development
        ARCHIVE COMPONENT qzoci_development
        FILE_SET HEADERS COMPONENT qzoci_development)
    install(
        EXPORT qzoci_${component}
        NAMESPACE qzoci::
        FILE qzoci-${component}-targets.cmake
        DESTINATION ${package_folder}
        COMPONENT qzoci_development)
endfunction()

# <name>.pc, which finds its prefix from where it lies.
function(qzoci_install_pkg_config name)
    file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
    install(
        FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT qzoci_development)
endfunction()

set_target_properties(qzoci_calc_number PROPERTIES EXPORT_NAME calc_number)
set_target_properties(qzoci_calc_number_shared PROPERTIES EXPORT_NAME calc_number_shared)
qzoci_install_targets(calc_number qzoci_calc_number qzoci_calc_number_shared)
qzoci_install_pkg_config(qzoci)

# In the archive as built, tests reach the internal routines by name; in the installed one no name of theirs meets a
# host's.
if(CMAKE_EXECUTABLE_FORMAT STREQUAL ELF)
    install(
        CODE "set(archive \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:qzoci_calc_number>\")
set(compiler \"${CMAKE_CXX_COMPILER}\")
set(compiler_id \"${CMAKE_CXX_COMPILER_ID}\")
set(objcopy \"${CMAKE_OBJCOPY}\")
set(ar \"${CMAKE_AR}\")
include(\"${CMAKE_CURRENT_SOURCE_DIR}/cmake/LocaliseInternalSymbols.cmake\")"
        COMPONENT qzoci_development)
endif()

configure_package_config_file(cmake/qzoci-config.cmake.in qzoci-config.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(qzoci-config-version.cmake COMPATIBILITY SameMinorVersion)
install(
    FILES ${CMAKE_CURRENT_BINARY_DIR}/qzoci-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/qzoci-config-version.cmake
    DESTINATION ${package_folder}
    COMPONENT qzoci_development)

if(QZOCI_WITH_TOOL)
    set_target_properties(qzoci_log PROPERTIES EXPORT_NAME log)
    qzoci_install_targets(log qzoci_log)
    qzoci_install_pkg_config(qzoci-log)
    set_target_properties(qzoci_cpp PROPERTIES EXPORT_NAME cpp)
    qzoci_install_targets(cpp qzoci_cpp)
    install(TARGETS qznum COMPONENT qzoci_tool)
    install(
        FILES ${CMAKE_CURRENT_BINARY_DIR}/tools/qznum/completion/qznum
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT qzoci_tool)
    set(qznum_manual ${CMAKE_CURRENT_BINARY_DIR}/tools/qznum/man/qznum.1)
    if(NOT QZOCI_DEBIAN_PACKAGES)
        install(
            FILES ${qznum_manual}
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT qzoci_tool)
    endif()
endif()
