# Builds for 64-bit Windows on Linux: MinGW-w64 with POSIX threads, as the distribution packages it. The libraries come
# from the folder that scripts/build-windows-libraries fills. Everything but the system's own DLLs is linked in.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# SCANREADER_WINDOWS_LIBRARIES, else a folder of the user's cache; as the script decides it.
set(SCANREADER_WINDOWS_LIBRARIES $ENV{SCANREADER_WINDOWS_LIBRARIES})
if(NOT SCANREADER_WINDOWS_LIBRARIES)
  set(cache $ENV{XDG_CACHE_HOME})
  if(NOT cache)
    set(cache $ENV{HOME}/.cache)
  endif()
  set(SCANREADER_WINDOWS_LIBRARIES ${cache}/scanreader/windows)
endif()

# Programs run here, everything else is found there: nothing of this machine's own libraries gets in.
set(CMAKE_FIND_ROOT_PATH ${SCANREADER_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# No build time inside, so that the same sources give the same bytes.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
  set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT -s) # the compiler's own libraries bring symbols for a debugger
endforeach()

# What runs the programs that are built. Wine itself stands in for a missing Windows.
find_program(SCANREADER_WINE NAMES wine wine64)
if(SCANREADER_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${SCANREADER_WINE})
endif()
