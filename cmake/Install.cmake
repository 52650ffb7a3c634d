# What is installed: the two libraries, their public headers, the CMake package, the pkg-config files, the qsb command
# and the licence. Nothing installed names the folder it was built in or installed to, so the whole can be moved.
set(public_headers
  Source/Sio/ScanReader/QsbReader.h Source/Sio/ScanReader/qsb.h Source/Sio/ScanReader/Export.h)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ScanReader)

# The number in a library's name changes when a host built against an earlier version would no longer run.
set_target_properties(ScanReader ScanReaderC PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1)
install(TARGETS ScanReader ScanReaderC EXPORT ScanReaderTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${public_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ScanReader)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The CMake package. A host needs no other package, so the exported targets are all there is to it.
include(CMakePackageConfigHelpers)
install(EXPORT ScanReaderTargets NAMESPACE ScanReader:: FILE ScanReaderConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ScanReaderConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ScanReaderConfigVersion.cmake DESTINATION ${package_dir})

# The pkg-config files find their prefix from where they lie themselves.
file(RELATIVE_PATH prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(library ScanReader ScanReaderC)
  string(TOLOWER ${library} pc_name)
  configure_file(cmake/scanreader.pc.in ${PROJECT_BINARY_DIR}/${pc_name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc_name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# What is linked into the binaries for Windows comes with terms of its own.
if(WIN32 AND SCANREADER_WINDOWS_LIBRARIES)
  install(DIRECTORY ${SCANREADER_WINDOWS_LIBRARIES}/licences DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()

if(SCANREADER_TOOLS)
  file(RELATIVE_PATH libdir_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(qsb PROPERTIES INSTALL_RPATH "$ORIGIN/${libdir_from_bin}")
  install(TARGETS qsb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(CPACK_GENERATOR TGZ)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
endif()
set(CPACK_PACKAGE_NAME scanreader)
set(CPACK_PACKAGE_VENDOR "The ScanReader developers")
set(CPACK_PACKAGE_FILE_NAME scanreader-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
include(CPack)
