# Makes page_parts.cpp of the files of this folder, at build time:
#
#   cmake -D D3=d3-hierarchy.min.js -D OUTPUT=page_parts.cpp -P embed.cmake
#
# A browser runs only the style and the script whose hashes the page's policy names. The hashes are
# therefore those of exactly what stands between the tags.
cmake_policy(VERSION 3.25)
set(here ${CMAKE_CURRENT_LIST_DIR})

function(base64_of_sha256 text result)
  set(digits ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  string(SHA256 hex "${text}")
  set(base64 "")
  foreach(i RANGE 0 63 3)  # three digits are two of base64; two zeros fill the last three
    string(SUBSTRING "${hex}00" ${i} 3 three)
    math(EXPR high "0x${three} >> 6")
    math(EXPR low "0x${three} & 63")
    string(SUBSTRING ${digits} ${high} 1 high)
    string(SUBSTRING ${digits} ${low} 1 low)
    string(APPEND base64 ${high}${low})
  endforeach()
  string(REGEX REPLACE ".$" "=" base64 ${base64})
  set(${result} "'sha256-${base64}'" PARENT_SCOPE)
endfunction()

file(READ ${here}/style.css style)
file(READ ${here}/d3-hierarchy.txt licence)
file(READ ${D3} d3)
set(script "${d3}\n(() => {\n\"use strict\";\n")
foreach(name model elements bars layout picture moving folding keyboard search details tables print start)
  file(READ ${here}/${name}.js part)
  string(APPEND script "${part}")
endforeach()
string(APPEND script "})();\n")

foreach(embedded style script)
  if("${${embedded}}" MATCHES "</[sS]|<!--|@[A-Z]+@")
    message(FATAL_ERROR "the page's ${embedded} has \"${CMAKE_MATCH_0}\" in it, which would end it")
  endif()
  base64_of_sha256("${${embedded}}" ${embedded}_hash)
endforeach()

file(READ ${here}/tree.html page)
string(REPLACE "@STYLE_HASH@" "${style_hash}" page "${page}")
string(REPLACE "@SCRIPT_HASH@" "${script_hash}" page "${page}")
string(REPLACE "@LICENCE@" "${licence}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")
foreach(own TITLE TEXT DATA)  # the tree's own parts
  string(REPLACE "@${own}@" ")page\",\n    R\"page(" page "${page}")
endforeach()
file(WRITE ${OUTPUT} "#include \"arbor/report/page/page_parts.h\"

namespace arbor::tree {

const page_template page_parts{
    R\"page(${page})page\"};

}  // namespace arbor::tree
")
