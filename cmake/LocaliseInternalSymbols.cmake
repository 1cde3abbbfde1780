# Makes one object of an archive's members, in which hidden symbols have become local ones, and an archive of it again.
# Takes archive, compiler, compiler_id, objcopy and ar.

# Each group of an inline function becomes an ordinary section: a group whose name is local would still be merged with
# one of the host's that has the same name.
set(link_flags -r -nostdlib -Wl,--force-group-allocation)
if(compiler_id STREQUAL GNU)
    # Machine code also from objects that hold the compiler's intermediate form.
    list(APPEND link_flags -flinker-output=nolto-rel)
endif()

set(object ${archive}.o)
execute_process(COMMAND ${compiler} ${link_flags} -Wl,--whole-archive ${archive} -Wl,--no-whole-archive -o ${object}
                        COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${objcopy} --localize-hidden ${object} COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${archive})
get_filename_component(folder ${archive} DIRECTORY)
get_filename_component(name ${archive} NAME_WE)
file(RENAME ${object} ${folder}/${name}.o)
# Without dates and owners, so that equal builds give equal archives.
execute_process(COMMAND ${ar} rcsD ${archive} ${folder}/${name}.o COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${folder}/${name}.o)
