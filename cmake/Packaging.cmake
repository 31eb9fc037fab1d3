# Debian packages: `cpack` in a build folder that is configured for the prefix /usr (./dev package).
compressed(data/debian/changelog changelog.gz)
foreach(pair programs:paint-thumbnailer library:libpaintengine0 development:libpaintengine-dev
    kde:paint-thumbnailer-kde)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 component)
  list(GET pair 1 package)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  if(component STREQUAL kde AND NOT PAINT_KDE)
    continue()
  endif()
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  install(FILES data/debian/copyright ${PROJECT_BINARY_DIR}/compressed/changelog.gz
    COMPONENT ${component} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The paintengine authors")
set(CPACK_PACKAGE_CONTACT "The paintengine authors <maintainers@paintengine.org>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "libpaintengine0 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_RECOMMENDS "shared-mime-info, fonts-liberation2")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS "bubblewrap")
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "thumbnails and pictures of paint documents
File managers of GNOME, Xfce and others show paint documents as thumbnails
once this package is installed. It has two programs: paint-thumbnailer makes
a PNG thumbnail of one file; paintdoc looks into documents, renders and checks
them.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/debian/shlibs CONTENT
  "libpaintengine ${PROJECT_VERSION_MAJOR} libpaintengine0 (>= ${PROJECT_VERSION})\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/debian/shlibs ${PROJECT_BINARY_DIR}/debian/triggers)
# Without the first SVG pictures are drawn by the built-in engine, which knows less of SVG; without the
# second, PDF pages that name East Asian fonts without bringing them lack their text.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "librsvg2-2, poppler-data")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "reads and renders paint documents (shared library)
The engine behind paint-thumbnailer: documents of vector and raster elements
with shadows, gradients, filters and text become pictures. Libraries for
text, SVG and picture formats are loaded by the documents that need them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libpaintengine0 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "reads and renders paint documents (development files)
Headers, CMake package and pkg-config file of the library that reads and
renders paint documents.")

set(CPACK_DEBIAN_KDE_PACKAGE_SECTION kde)
set(CPACK_DEBIAN_KDE_PACKAGE_DEPENDS "libpaintengine0 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_KDE_PACKAGE_ENHANCES "dolphin, kio-extras")
set(CPACK_DEBIAN_KDE_PACKAGE_RECOMMENDS "paint-thumbnailer")
set(CPACK_DEBIAN_KDE_DESCRIPTION "thumbnails of paint documents in KDE Plasma 5
A plugin for the thumbnailer of KDE Frameworks 5, which does not read the
entries that other desktops share. Newer KDE needs only the package
paint-thumbnailer.")

include(CPack)
