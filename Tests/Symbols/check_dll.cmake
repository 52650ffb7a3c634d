# Compares what a binary for Windows exports with the list in EXPECTED, and the DLLs that it loads with LOADS, both ways.
# Without EXPECTED, for programs, it may export nothing.
#   cmake -D OBJDUMP=objdump -D BINARY=ScanReader.dll -D EXPECTED=symbols.txt -D "LOADS=kernel32.dll;..." -P check_dll.cmake
cmake_minimum_required(VERSION 3.25) # empty elements of lists count
execute_process(COMMAND ${OBJDUMP} -p ${BINARY} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)

# "[Ordinal/Name Pointer] Table" is followed by lines "[ordinal] name" and ends with an empty line.
string(FIND "${listing}" "[Ordinal/Name Pointer] Table" begin)
set(exported)
if(NOT begin EQUAL -1)
  string(SUBSTRING "${listing}" ${begin} -1 table)
  string(FIND "${table}" "\n\n" end)
  string(SUBSTRING "${table}" 0 ${end} table)
  string(FIND "${table}" "\n" head)
  string(SUBSTRING "${table}" ${head} -1 table)
  # Brackets would keep a list from being taken apart.
  string(REGEX REPLACE "[][]" "" table "${table}")
  string(REGEX MATCHALL "[^\n]+" lines "${table}")
  foreach(line IN LISTS lines)
    # Newer ones print "[ordinal] +base[ordinal] hint name".
    if(NOT line MATCHES "^[ \t]+[0-9]+( +\\+base +[0-9]+ +[0-9a-f]+)? +([^ ]+)$")
      message(FATAL_ERROR "cannot read this line of ${OBJDUMP}: ${line}")
    endif()
    list(APPEND exported ${CMAKE_MATCH_2})
  endforeach()
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" lines "${listing}")
set(loaded)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^DLL Name: " "" name "${line}")
  string(TOLOWER "${name}" name)
  list(APPEND loaded ${name})
endforeach()

set(expected)
if(DEFINED EXPECTED)
  file(STRINGS ${EXPECTED} expected REGEX "^[^#]")
endif()

set(defects 0)
# Says what stands in the first list and not in the second.
macro(report text first second)
  set(difference ${${first}} "")
  list(REMOVE_ITEM difference ${${second}} "")
  foreach(name IN LISTS difference)
    message("${text}: ${name}")
    math(EXPR defects "${defects} + 1")
  endforeach()
endmacro()
report("missing" expected exported)
report("not expected" exported expected)
report("must not be loaded" loaded LOADS)
report("not loaded" LOADS loaded)
if(defects)
  message(FATAL_ERROR "${BINARY} does not export exactly what is listed, or does not load exactly ${LOADS}")
endif()
list(LENGTH exported count)
message("${count} symbols, all expected; loads ${loaded}")
