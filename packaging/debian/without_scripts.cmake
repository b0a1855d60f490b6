# The library's trigger has the linker's cache made anew. CPack adds scripts that do so once more, and cannot go without.
foreach(package ${CPACK_PACKAGE_FILES})
  get_filename_component(name ${package} NAME)
  if(name MATCHES "^libzeltarkasdk[0-9]+_")
    set(unpacked ${package}-unpacked)
    file(REMOVE_RECURSE ${unpacked})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group -Zgzip --build ${unpacked} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${unpacked})
  endif()
endforeach()
