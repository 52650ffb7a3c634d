# What every target of this project is compiled with. scanreader_options carries it.

add_library(scanreader_options INTERFACE)
target_compile_features(scanreader_options INTERFACE cxx_std_20)
target_compile_options(scanreader_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  # A message-only assertion is written as a negated text, which this warning takes for a mistake.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-string-conversion>
  # Results are the same bit for bit on every path and compiler; a fused multiply-add would change them.
  -ffp-contract=off)
if(SCANREADER_WARNINGS_AS_ERRORS)
  target_compile_options(scanreader_options INTERFACE -Werror)
endif()
if(SCANREADER_SANITIZE)
  target_compile_options(scanreader_options INTERFACE
    -fsanitize=${SCANREADER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(scanreader_options INTERFACE -fsanitize=${SCANREADER_SANITIZE})
endif()
if(SCANREADER_COVERAGE)
  target_compile_options(scanreader_options INTERFACE --coverage)
  target_link_options(scanreader_options INTERFACE --coverage)
endif()
if(SCANREADER_FUZZERS)
  target_compile_options(scanreader_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The platform layer has one header and two sources per idea; this picks the source.
if(WIN32)
  set(SCANREADER_PLATFORM Win32)
else()
  set(SCANREADER_PLATFORM Posix)
endif()
