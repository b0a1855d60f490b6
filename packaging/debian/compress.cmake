# Compresses the files that Debian wants compressed, without time stamps, so that builds are reproducible.
file(GLOB_RECURSE files ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog
  ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.[1-8])
foreach(file ${files})
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
