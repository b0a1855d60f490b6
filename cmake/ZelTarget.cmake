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
  # A class's hidden state may have members of types that are local to its file; in a unity build that file counts as a
  # header.
  target_compile_options(zel_settings INTERFACE -Wno-subobject-linkage)
endif()
target_link_libraries(zel_settings INTERFACE Threads::Threads)

# Lets the linker remove unused functions one by one.
if(ZEL_CORE_ONLY)
  add_compile_options(-ffunction-sections -fdata-sections)
endif()

# A finding ends the program, so that no code is needed to continue after one. Other linkers than lld take minutes.
if(ZEL_SANITIZE)
  add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEL_SANITIZE} -fuse-ld=lld)
endif()

# A folder is a library of all its sources (except a program's main.cc), linked with the libraries of the folders that it
# may include according to cmake/lint/edges.txt. Sources are compiled in groups (unity build), to parse headers less
# often; so names in anonymous namespaces must be unique in their folder. ZEL_UNITY=OFF compiles them one by one. A group
# has at most ZEL_UNITY_BATCH files; 20 halve the processor time of 6, and leave work for two processors.
option(ZEL_UNITY "Compile several files of a folder as one" ON)
set(ZEL_UNITY_BATCH 20 CACHE STRING "How many files of a folder are compiled as one")

# zel_folder([SUBFOLDERS names] [LINKS libraries] [PRIVATE_LINKS libraries]): this folder's library, zel_ and the folder's
# name. SUBFOLDERS belong to it; LINKS adds libraries from outside the project.
function(zel_folder)
  cmake_parse_arguments(arg "" "" "SUBFOLDERS;LINKS;PRIVATE_LINKS" ${ARGN})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  zel_library_of(${folder} library)
  zel_sources(sources "${arg_SUBFOLDERS}")
  add_library(${library} STATIC ${sources})
  set_target_properties(${library} PROPERTIES UNITY_BUILD ${ZEL_UNITY} UNITY_BUILD_BATCH_SIZE ${ZEL_UNITY_BATCH})
  zel_edges(${folder} below)
  target_link_libraries(${library} PUBLIC zel_settings ${below} ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  if(ZEL_BUILD_FUZZ)
    target_compile_options(${library} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# The name of a folder's library: platform/linux is zel_linux. One that bears the name of a folder of the ground floor
# has its whole path: gateway/outputs is zel_gateway_outputs.
function(zel_library_of folder result)
  get_filename_component(name ${folder} NAME)
  if(NOT name STREQUAL folder AND IS_DIRECTORY ${PROJECT_SOURCE_DIR}/${name})
    string(REPLACE "/" "_" name ${folder})
  endif()
  set(${result} zel_${name} PARENT_SCOPE)
endfunction()

# All sources of this folder and of the named subfolders, except those of programs.
function(zel_sources result subfolders)
  set(patterns *.cc)
  foreach(subfolder ${subfolders})
    list(APPEND patterns ${subfolder}/*.cc)
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  list(FILTER sources EXCLUDE REGEX "/main\\.cc$")
  set(${result} ${sources} PARENT_SCOPE)
endfunction()

# The libraries of the folders that this one may include. Lines of edges.txt are "folder: folders, or files of them".
set(ZEL_EDGES_FILE ${PROJECT_SOURCE_DIR}/cmake/lint/edges.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ZEL_EDGES_FILE})
function(zel_edges folder result)
  file(STRINGS ${ZEL_EDGES_FILE} line REGEX "^${folder}:")
  string(REGEX REPLACE "^[^:]*: *" "" allowed "${line}")
  string(REGEX REPLACE " +" ";" allowed "${allowed}")
  set(libraries)
  foreach(below ${allowed})
    string(REGEX REPLACE "/[^/]*\\.h$" "" below ${below})
    zel_library_of(${below} library)
    list(APPEND libraries ${library})
  endforeach()
  list(REMOVE_DUPLICATES libraries)
  set(${result} ${libraries} PARENT_SCOPE)
endfunction()
