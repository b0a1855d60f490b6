# The libraries' triggers run ldconfig. Removes CPack's scripts, which would run it again and cannot be disabled.
foreach(package ${CPACK_PACKAGE_FILES})
  get_filename_component(name ${package} NAME)
  if(name MATCHES "^libzeltarkasdk[a-z]*[0-9]+_")
    set(unpacked ${package}-unpacked)
    file(REMOVE_RECURSE ${unpacked})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group -Zgzip --build ${unpacked} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${unpacked})
  endif()
endforeach()
