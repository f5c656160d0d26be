# skerrow_dictionary(<sdef> <function> <output folder>)
#
# Makes <output folder>/dictionary_tables.cpp and command_classes.cpp from a scripting dictionary.
# The tables define <function>.
function(skerrow_dictionary sdef function output)
  file(MAKE_DIRECTORY ${output})
  set(generator ${CMAKE_SOURCE_DIR}/scripting/generate_dictionary.py)
  add_custom_command(
    OUTPUT ${output}/dictionary_tables.cpp ${output}/command_classes.cpp
    COMMAND ${Python3_EXECUTABLE} ${generator} ${CMAKE_SOURCE_DIR}/${sdef}
            --tables ${output}/dictionary_tables.cpp --classes ${output}/command_classes.cpp
            --namespace-function ${function}
    DEPENDS ${generator} ${CMAKE_SOURCE_DIR}/${sdef}
    COMMENT "Reading ${sdef}"
    VERBATIM)
endfunction()
