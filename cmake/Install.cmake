# What `cmake --install` puts where. The components are those of the Debian packages; "programs" and
# "library" together are what a desktop needs.
include(CMakePackageConfigHelpers)

# Programs contain the engine, because one library less to load is a tenth of the start of a small
# thumbnail; the modules they share with the library.
install(TARGETS paint-thumbnailer paintdoc
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
install(TARGETS ${PAINT_MODULES}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/paintengine COMPONENT library)

# What the engine has pictures drawn by, with its choice of fonts.
install(TARGETS paint-picture-helper
  RUNTIME DESTINATION ${PAINT_HELPER_FOLDER} COMPONENT library)
install(FILES data/fonts.conf COMPONENT library DESTINATION ${PAINT_DATA_FOLDER})

install(TARGETS paintengine_shared EXPORT paintengineTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/paintengine)
install(EXPORT paintengineTargets NAMESPACE paintengine:: COMPONENT development
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/paintengine)
configure_package_config_file(cmake/paintengineConfig.cmake.in paintengineConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/paintengine)
write_basic_package_version_file(paintengineConfigVersion.cmake COMPATIBILITY SameMinorVersion)
configure_file(cmake/paintengine.pc.in paintengine.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/paintengineConfig.cmake
  ${PROJECT_BINARY_DIR}/paintengineConfigVersion.cmake COMPONENT development
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/paintengine)
install(FILES ${PROJECT_BINARY_DIR}/paintengine.pc COMPONENT development
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The headers that the library's one header needs, as the compiler finds them.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -x c++-header -MM -I src src/paintengine.h
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE rule COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "src/[A-Za-z0-9_/]+\\.h" headers "${rule}")
foreach(header IN LISTS headers)
  # A header that includes another one changes the list.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  get_filename_component(folder ${header} DIRECTORY)
  string(REGEX REPLACE "^src/?" "" folder ${folder})
  install(FILES ${header} COMPONENT development
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/paintengine/${folder})
endforeach()

install(FILES data/paint-thumbnailer.thumbnailer COMPONENT programs
  DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers)
install(FILES data/paint-document.xml COMPONENT programs
  DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES data/org.paintengine.paintdoc.metainfo.xml COMPONENT programs
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(program paint-thumbnailer paintdoc)
  install(FILES data/completions/${program}.bash COMPONENT programs RENAME ${program}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES data/completions/_${program} COMPONENT programs
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES data/completions/${program}.fish COMPONENT programs
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()

# compressed(SOURCE NAME): a copy of a file as gzip makes it without name and time, in
# ${PROJECT_BINARY_DIR}/compressed.
find_program(GZIP gzip REQUIRED)
function(compressed source name)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/compressed)
  execute_process(COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/${source}
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/compressed/${name} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
foreach(program paint-thumbnailer paintdoc)
  compressed(data/man/${program}.1 ${program}.1.gz)
  install(FILES ${PROJECT_BINARY_DIR}/compressed/${program}.1.gz COMPONENT programs
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
