# Makes the scans in a folder of their own, lets a reader describe them and compares what it says with records.txt, byte
# for byte.
#   cmake -D "MAKE=command;..." -D "READ=command;..." -D EXPECTED=records.txt -D WORK=folder -P check_records.cmake
# The folder of the scans is added to both commands.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/scans)
execute_process(COMMAND ${MAKE} ${WORK}/scans COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${READ} ${WORK}/scans OUTPUT_FILE ${WORK}/said.txt COMMAND_ERROR_IS_FATAL ANY)

# A C runtime may end lines in its own way.
file(READ ${WORK}/said.txt said)
string(REPLACE "\r\n" "\n" said "${said}")
file(READ ${EXPECTED} expected)
if(NOT said STREQUAL expected)
  file(WRITE ${WORK}/said.txt "${said}")
  execute_process(COMMAND diff ${EXPECTED} ${WORK}/said.txt)
  message(FATAL_ERROR "the reader's lines are not those of ${EXPECTED}")
endif()
string(REGEX MATCHALL "\n" lines "${said}")
list(LENGTH lines count)
message("${count} scans, all as expected")
file(REMOVE_RECURSE ${WORK})
