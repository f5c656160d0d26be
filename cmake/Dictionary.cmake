# skerrow_dictionary(<sdef> <function> <output folder>)
#
# Makes <output folder>/dictionary_tables.cpp, command_classes.cpp, kind_words_table.cpp and
# argument_keys/<command>.h from a
# scripting dictionary. The tables define <function>.
#
# A header of keys for each command, so that a change of one command leaves the others as they are
# built. What headers there will be is asked when the build is configured.
function(skerrow_dictionary sdef function output)
  file(MAKE_DIRECTORY ${output})
  set(generator ${CMAKE_SOURCE_DIR}/scripting/dictionary/generate_dictionary.py)
  set(programs ${generator} ${CMAKE_SOURCE_DIR}/scripting/dictionary/definition.py)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} -B ${generator} ${CMAKE_SOURCE_DIR}/${sdef} --list-commands
    OUTPUT_VARIABLE commands OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${programs} ${CMAKE_SOURCE_DIR}/${sdef})
  string(REGEX REPLACE "([^\n]+)\n?" "${output}/argument_keys/\\1.h;" keys "${commands}")
  add_custom_command(
    OUTPUT ${output}/dictionary_tables.cpp ${output}/command_classes.cpp
           ${output}/kind_words_table.cpp ${keys}
    COMMAND ${Python3_EXECUTABLE} -B ${generator} ${CMAKE_SOURCE_DIR}/${sdef}
            --tables ${output}/dictionary_tables.cpp --classes ${output}/command_classes.cpp
            --keys ${output}/argument_keys --kind-words ${output}/kind_words_table.cpp
            --namespace-function ${function}
    DEPENDS ${programs} ${CMAKE_SOURCE_DIR}/${sdef}
    COMMENT "Reading ${sdef}"
    VERBATIM)
endfunction()
