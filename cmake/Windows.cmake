# What a binary for Windows has beside its code: a version resource, and for a library the files that other linkers
# want.
enable_language(RC)

# scanreader_version_resource(TARGET DESCRIPTION): what the file's properties show.
function(scanreader_version_resource target description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(file_type VFT_APP)
    set(file_name ${target}.exe)
  else()
    set(file_type VFT_DLL)
    set(file_name ${target}.dll)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

# scanreader_windows_library(TARGET DESCRIPTION): a DLL called after its target, with the list of its exports as TARGET.def
# and an import library for other linkers as TARGET.lib, both installed beside the one for MinGW.
find_program(SCANREADER_DLLTOOL NAMES x86_64-w64-mingw32-dlltool dlltool REQUIRED)
function(scanreader_windows_library target description)
  scanreader_version_resource(${target} ${description})
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/Source/Bss/Bss_Hal/BSS_HAL_LibraryUnload_Win32.cpp)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/Source)
  set_target_properties(${target} PROPERTIES PREFIX "")
  set(stem ${CMAKE_BINARY_DIR}/lib/${target})
  target_link_options(${target} PRIVATE LINKER:--exclude-all-symbols LINKER:--output-def=${stem}.def)
  add_custom_command(TARGET ${target} POST_BUILD BYPRODUCTS ${stem}.def ${stem}.lib
    COMMAND ${SCANREADER_DLLTOOL} --machine i386:x86-64 --input-def ${stem}.def --dllname ${target}.dll --output-lib ${stem}.lib)
  install(FILES ${stem}.def ${stem}.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()
