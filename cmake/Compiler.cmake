# What every target of this project is compiled with. scanreader_warnings carries it, scanreader_options adds the
# language standard; targets that must compile as an older standard link to the former only.

add_library(scanreader_warnings INTERFACE)
target_compile_options(scanreader_warnings INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  # A message-only assertion is written as a negated text, which this warning takes for a mistake.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-string-conversion>
  # Results are the same bit for bit on every path and compiler; a fused multiply-add would change them.
  -ffp-contract=off)
if(MINGW)
  # Windows 7 is the oldest system that is asked for.
  target_compile_definitions(scanreader_warnings INTERFACE _WIN32_WINNT=0x0601)
  # The stack is aligned to 16 bytes only, while the compiler expects 32 where it keeps wide vectors there. The assembler
  # therefore turns every aligned vector move into one that takes any address.
  target_compile_options(scanreader_warnings INTERFACE -Wa,-muse-unaligned-vector-move)
endif()
if(SCANREADER_WARNINGS_AS_ERRORS)
  target_compile_options(scanreader_warnings INTERFACE -Werror)
endif()
if(SCANREADER_SANITIZE)
  target_compile_options(scanreader_warnings INTERFACE
    -fsanitize=${SCANREADER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(scanreader_warnings INTERFACE -fsanitize=${SCANREADER_SANITIZE})
endif()
if(SCANREADER_COVERAGE)
  target_compile_options(scanreader_warnings INTERFACE --coverage)
  target_link_options(scanreader_warnings INTERFACE --coverage)
endif()
if(SCANREADER_FUZZERS)
  target_compile_options(scanreader_warnings INTERFACE -fsanitize=fuzzer-no-link)
endif()

add_library(scanreader_options INTERFACE)
target_compile_features(scanreader_options INTERFACE cxx_std_20)
target_link_libraries(scanreader_options INTERFACE scanreader_warnings)

# The platform layer has one header and two sources per idea; this picks the source.
if(WIN32)
  set(SCANREADER_PLATFORM Win32)
else()
  set(SCANREADER_PLATFORM Posix)
endif()
