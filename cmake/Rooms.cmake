# skerrow_room(<folder> LINK <library>... [GENERATED <source>...])
#
# Makes the static library skerrow_<folder> from every *.cpp in the folder and in the rooms inside
# of it; a new file needs no line here. A folder's main.cpp belongs to its program, not to the
# library.
function(skerrow_room room)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK;GENERATED")
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${room}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(skerrow_${room} STATIC ${sources} ${arg_GENERATED})
  target_link_libraries(skerrow_${room} PUBLIC ${arg_LINK} skerrow_options)
endfunction()
