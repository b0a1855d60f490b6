# Makes RESULT, a source that holds FILES as pageFiles() gives them.
set(types
  "html=text/html@" "css=text/css@" "js=text/javascript@" "svg=image/svg+xml"
  "h264=application/octet-stream" "mp4=video/mp4")

set(contents)
set(rows)
foreach(file ${FILES})
  get_filename_component(name ${file} NAME)
  get_filename_component(ending ${file} LAST_EXT)
  string(SUBSTRING ${ending} 1 -1 ending)
  set(type ${types})
  list(FILTER type INCLUDE REGEX "^${ending}=")
  string(REGEX REPLACE "^[^=]*=" "" type "${type}")
  string(REPLACE "@" "; charset=utf-8" type "${type}")  # a semicolon would part the list
  string(MAKE_C_IDENTIFIER "k_${name}" identifier)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes "${bytes}")
  file(SHA256 ${file} hash)
  string(SUBSTRING ${hash} 0 20 hash)
  if(name STREQUAL "index.html")
    set(name "")
  endif()
  string(APPEND contents "constexpr std::uint8_t ${identifier}[] = {\n${bytes}};\n")
  string(APPEND rows "    {\"/${name}\", \"${type}\", \"\\\"${hash}\\\"\", ${identifier}},\n")
endforeach()

file(WRITE ${RESULT} "// Made of gateway/page/ by embed.cmake.
#include \"gateway/page/page_files.h\"

namespace zel::gateway {
namespace {

${contents}
constexpr PageFile kFiles[] = {
${rows}};

}  // namespace

std::span<const PageFile> pageFiles() { return kFiles; }

}  // namespace zel::gateway
")
