# skerrow_dictionary(<sdef> <function> <output folder>)
#
# Makes <output folder>/dictionary_tables.cpp, command_classes.cpp and argument_keys/<class>.h from a
# scripting dictionary. The tables define <function>.
#
# A header of keys for each command, so that a change of one command leaves the others as they are
# built. What headers there will be is asked when the build is configured.
function(skerrow_dictionary sdef function output)
  file(MAKE_DIRECTORY ${output})
  set(generator ${CMAKE_SOURCE_DIR}/scripting/generate_dictionary.py)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} -B ${generator} ${CMAKE_SOURCE_DIR}/${sdef} --list-classes
    OUTPUT_VARIABLE classes OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${generator} ${CMAKE_SOURCE_DIR}/${sdef})
  string(REGEX REPLACE "([^\n]+)\n?" "${output}/argument_keys/\\1.h;" keys "${classes}")
  add_custom_command(
    OUTPUT ${output}/dictionary_tables.cpp ${output}/command_classes.cpp ${keys}
    COMMAND ${Python3_EXECUTABLE} ${generator} ${CMAKE_SOURCE_DIR}/${sdef}
            --tables ${output}/dictionary_tables.cpp --classes ${output}/command_classes.cpp
            --keys ${output}/argument_keys --namespace-function ${function}
    DEPENDS ${generator} ${CMAKE_SOURCE_DIR}/${sdef}
    COMMENT "Reading ${sdef}"
    VERBATIM)
endfunction()
