# tessarin_embed_files(<target> <function> BASE <dir> FILES <file>...)
#
# Compiles files into <target> as byte arrays and adds a C++ function
#   std::string_view <function>(std::string_view name)
# (namespace tessarin::resources) that gives a file's bytes by its path relative to BASE, or an
# empty view when there is no such file. Declare the function where it is used. Editing an
# embedded file rebuilds only the generated source.
function(tessarin_embed_files target function)
  cmake_parse_arguments(ARG "" "BASE" "FILES" ${ARGN})
  set(out ${CMAKE_CURRENT_BINARY_DIR}/${target}_${function}.cpp)
  set(names "")
  foreach(f IN LISTS ARG_FILES)
    file(RELATIVE_PATH rel ${ARG_BASE} ${f})
    list(APPEND names ${rel})
  endforeach()
  add_custom_command(
    OUTPUT ${out}
    COMMAND ${CMAKE_COMMAND} -DOUT=${out} -DFUNCTION=${function} -DBASE=${ARG_BASE}
            "-DFILES=${ARG_FILES}" -P ${PROJECT_SOURCE_DIR}/cmake/EmbedFilesScript.cmake
    DEPENDS ${ARG_FILES} ${PROJECT_SOURCE_DIR}/cmake/EmbedFilesScript.cmake
    COMMENT "Embedding resources for ${target}"
    VERBATIM)
  target_sources(${target} PRIVATE ${out})
endfunction()
