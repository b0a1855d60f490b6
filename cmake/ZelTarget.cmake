# Settings that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

find_program(ZEL_CCACHE ccache)
if(ZEL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZEL_CCACHE})
endif()

find_package(Threads REQUIRED)

add_library(zel_settings INTERFACE)
target_include_directories(zel_settings INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_options(zel_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wimplicit-fallthrough -Wswitch -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(zel_settings INTERFACE -Wthread-safety)
else()
  # g++ 12 sees an overlap, or a size beyond all memory, in std::string concatenations that it inlines.
  target_compile_options(zel_settings INTERFACE -Wno-restrict -Wno-stringop-overflow)
endif()
target_link_libraries(zel_settings INTERFACE Threads::Threads)

# What nobody calls can then be left out by the linker, a function at a time.
if(ZEL_CORE_ONLY)
  add_compile_options(-ffunction-sections -fdata-sections)
endif()

if(ZEL_SANITIZE)
  add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEL_SANITIZE})
endif()

# Several files of a folder are compiled as one, which saves reading their headers again; OFF suits whoever edits them.
option(ZEL_UNITY "Compile several files of a folder as one" ON)

# zel_unity(TARGET FILES ALONE b.cc): so many at once; those that stand ALONE are compiled by themselves.
function(zel_unity target files)
  cmake_parse_arguments(arg "" "" "ALONE" ${ARGN})
  set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${ZEL_UNITY} UNITY_BUILD_BATCH_SIZE ${files})
endfunction()

# zel_library(NAME SOURCES a.cc ALONE b.cc LINKS targets): one folder's library.
function(zel_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;ALONE;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES} ${arg_ALONE})
  zel_unity(${name} 12 ALONE ${arg_ALONE})
  target_link_libraries(${name} PUBLIC zel_settings ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  if(ZEL_BUILD_FUZZ)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()
