# The Debian packages: the libraries, what their users compile with, and the two programs.
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
set(CPACK_COMPONENTS_ALL runtime outputs pictures camera c development tools python)
if(TARGET gstzelcam)
  list(APPEND CPACK_COMPONENTS_ALL gstreamer)
endif()
set(CPACK_PRE_BUILD_SCRIPTS
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/compress.cmake ${CMAKE_CURRENT_SOURCE_DIR}/debian/strip_archives.cmake)
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
zel_package(outputs libzeltarkasdkoutputs${ZEL_SOVERSION} libs "360-degree camera streams to files and servers"
  "${what}This package holds the shared library that writes a camera's stream to
files and servers.")
zel_package(pictures libzeltarkasdkpictures${ZEL_SOVERSION} libs "panoramas of 360-degree camera photos"
  "${what}This package holds the shared library that makes panoramas of photos.")
zel_package(camera libzeltarkasdkcamera${ZEL_SOVERSION} libs "360-degree camera as one object"
  "${what}This package holds the shared library that drives a camera through one
object.")
zel_package(c libzeltarkasdkc${ZEL_SOVERSION} libs "360-degree camera for programs in C"
  "${what}This package holds the shared library for programs in C, and for languages
that call C.")
zel_package(development libzeltarkasdk-dev libdevel "device framework for 360-degree cameras (development files)"
  "${what}This package holds the headers, the static libraries, and the files by
which CMake and pkg-config find them and the shared ones.")
zel_package(tools zeltarkasdk-tools utils "command-line host and simulator for 360-degree cameras"
  "${what}This package holds zelcam, the command-line host, and zelcam-sim, a
simulated camera.")
zel_package(python python3-zeltarkasdk python "360-degree camera for programs in Python"
  "${what}This package holds the module for Python: requests, photos, events, pictures
as buffers that NumPy takes without a copy, and streams, blocking and asyncio.")
if(TARGET gstzelcam)
  zel_package(gstreamer gstreamer1.0-zeltarkasdk libs "GStreamer source for 360-degree cameras"
    "${what}This package holds the GStreamer plugin with zelcamsrc, a live source of a
camera's pictures and sound.")
endif()
# Programs find the shared library after ldconfig has run.
foreach(component RUNTIME OUTPUTS PICTURES CAMERA C)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/triggers)
endforeach()
# The packages' own libraries are of one version; no other package tells of them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(all)
foreach(part "" outputs pictures camera c)
  list(APPEND all "libzeltarkasdk${part}${ZEL_SOVERSION} (= ${PROJECT_VERSION})")
endforeach()
list(GET all 0 CPACK_DEBIAN_OUTPUTS_PACKAGE_DEPENDS)
list(GET all 0 CPACK_DEBIAN_PICTURES_PACKAGE_DEPENDS)
list(GET all 1 CPACK_DEBIAN_CAMERA_PACKAGE_DEPENDS)
list(GET all 3 CPACK_DEBIAN_C_PACKAGE_DEPENDS)
list(GET all 3 CPACK_DEBIAN_GSTREAMER_PACKAGE_DEPENDS)
list(JOIN all ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS)
# The module is compiled for one version of Python; the scripts compile its sources there.
list(GET all 4 CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS)
string(APPEND CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS ", python3 (>= 3.11), python3 (<< 3.12)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/python/postinst ${CMAKE_CURRENT_SOURCE_DIR}/debian/python/prerm)
# Needed to link the static libraries alone.
set(packages ${ZEL_LINKED_WITH} ${ZEL_OUTPUTS_LINKED_WITH} ${ZEL_PICTURES_LINKED_WITH})
list(REMOVE_DUPLICATES packages)
list(TRANSFORM packages REPLACE "turbojpeg" "turbojpeg0")
list(TRANSFORM packages REPLACE "(.+)" "lib\\1-dev")
list(JOIN packages ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS)
include(CPack)
