# scanreader_headers_alone(TARGET HEADER...): an object library that includes each header alone, twice, in a source of
# its own. It is not part of the default build; the test of the same name builds it.
function(scanreader_headers_alone target)
  if(NOT ARGN)
    message(FATAL_ERROR "${target}: no headers")
  endif()
  set(sources)
  foreach(header IN LISTS ARGN)
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${header})
    string(MAKE_C_IDENTIFIER ${name} stem)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}/${stem}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n" @ONLY)
    list(APPEND sources ${source})
  endforeach()
  add_library(${target} OBJECT EXCLUDE_FROM_ALL ${sources})
  # What is asked is whether it compiles; optimising it would only take time.
  target_compile_options(${target} PRIVATE -O0)
  add_test(NAME ${target} COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target ${target})
  # Two builds in one folder would get in each other's way.
  set_tests_properties(${target} PROPERTIES RESOURCE_LOCK build_folder PROCESSORS 2)
endfunction()
