# Removes debug information from the static libraries. CPACK_STRIP_FILES does so with programs and shared libraries only.
file(GLOB_RECURSE archives ${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/*.a)
foreach(archive ${archives})
  execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${archive} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
