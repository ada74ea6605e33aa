# The rooms above the model, in one library: each folder adds its sources, and includes only folders named before it.
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_library(CSV_LIBRARY csv REQUIRED)
find_path(CSV_INCLUDE_DIR csv.h REQUIRED)
find_library(UTF8PROC_LIBRARY utf8proc REQUIRED)
find_path(UTF8PROC_INCLUDE_DIR utf8proc.h REQUIRED)
find_library(ZSTD_LIBRARY zstd REQUIRED)
find_path(ZSTD_INCLUDE_DIR zstd.h REQUIRED)

add_library(arbor_tree)
add_library(arbor::tree ALIAS arbor_tree)
target_include_directories(arbor_tree PRIVATE ${CSV_INCLUDE_DIR} ${UTF8PROC_INCLUDE_DIR} ${ZSTD_INCLUDE_DIR})
target_link_libraries(arbor_tree
  PUBLIC arbor::arbor
  PRIVATE ${CSV_LIBRARY} ${UTF8PROC_LIBRARY} fmt::fmt nlohmann_json::nlohmann_json Threads::Threads
    ZLIB::ZLIB ${ZSTD_LIBRARY} arbor_numerics)
foreach(room csv formats table tree store report report/page)
  add_subdirectory(arbor/${room})
endforeach()

# In unity builds a room is one translation unit.
get_target_property(sources arbor_tree SOURCES)
foreach(source ${sources})
  cmake_path(GET source PARENT_PATH room)
  cmake_path(GET room FILENAME room)
  set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${room})
endforeach()
set_target_properties(arbor_tree PROPERTIES UNITY_BUILD_MODE GROUP)
