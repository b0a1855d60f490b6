# The Debian packages: the library, its development files, and the two programs.
file(STRINGS debian/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "\\(${PROJECT_VERSION}\\)")
  message(FATAL_ERROR "packaging/debian/changelog does not begin with version ${PROJECT_VERSION}")
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zeltarkasdk)
set(CPACK_PACKAGE_VENDOR ZELTarkaSDK)
set(CPACK_PACKAGE_CONTACT "ZELTarkaSDK maintainers <maintainers@zeltarkasdk.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/compress.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/without_scripts.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# A program that was linked to one version can load later ones with the same SOVERSION.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# zel_package(COMPONENT NAME SECTION SUMMARY TEXT)
macro(zel_package component name section summary text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}")
  install(FILES debian/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
  install(FILES debian/changelog DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endmacro()

set(what "ZELTarkaSDK drives a small 360-degree camera over one byte stream:
it finds the camera, sends commands, takes photos and files, decodes the
preview, and stitches and encodes live video.
.
")
zel_package(runtime libzeltarkasdk${ZEL_SOVERSION} libs "device framework for 360-degree cameras"
  "${what}This package holds the shared library.")
zel_package(development libzeltarkasdk-dev libdevel "device framework for 360-degree cameras (development files)"
  "${what}This package holds the headers, the static library, and the files by which
CMake and pkg-config find both.")
zel_package(tools zeltarkasdk-tools utils "command-line host and simulator for 360-degree cameras"
  "${what}This package holds zelcam, the command-line host, and zelcam-sim, a
simulated camera.")
# Programs find the shared library after ldconfig has run.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/triggers)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libzeltarkasdk${ZEL_SOVERSION} (= ${PROJECT_VERSION})")
# Needed only for linking the static library.
list(TRANSFORM ZEL_LINKED_WITH REPLACE "(.+)" "lib\\1-dev" OUTPUT_VARIABLE packages)
list(JOIN packages ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS)
include(CPack)
