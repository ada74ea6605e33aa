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
arbor_library(arbor_tree)
set_target_properties(arbor_tree PROPERTIES OUTPUT_NAME arbor-tree EXPORT_NAME tree)
target_include_directories(arbor_tree PRIVATE ${CSV_INCLUDE_DIR} ${UTF8PROC_INCLUDE_DIR} ${ZSTD_INCLUDE_DIR})
# An installed static library names the packages that it needs, wherever they are there.
target_link_libraries(arbor_tree
  PUBLIC arbor::arbor
  PRIVATE $<BUILD_INTERFACE:${CSV_LIBRARY}> $<INSTALL_INTERFACE:csv>
    $<BUILD_INTERFACE:${UTF8PROC_LIBRARY}> $<INSTALL_INTERFACE:utf8proc>
    $<BUILD_INTERFACE:${ZSTD_LIBRARY}> $<INSTALL_INTERFACE:zstd>
    fmt::fmt Threads::Threads ZLIB::ZLIB $<BUILD_INTERFACE:nlohmann_json::nlohmann_json>)
target_sources(arbor_tree PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
  arbor/csv/declared_table.h
  arbor/csv/expansion_limit.h
  arbor/csv/input_options.h
  arbor/csv/input_remark.h
  arbor/csv/number_form.h
  arbor/csv/table_error.h
  arbor/report/evaluation_report.h
  arbor/report/page/page.h
  arbor/report/rating_report.h
  arbor/report/tree_graph.h
  arbor/report/tree_json.h
  arbor/report/tree_report.h
  arbor/store/model_store.h
  arbor/store/ownership.h
  arbor/table/memory_column.h
  arbor/table/memory_table.h
  arbor/table/table.h
  arbor/table/table_loader.h
  arbor/tree/attribute_importance.h
  arbor/tree/class_distribution.h
  arbor/tree/classification.h
  arbor/tree/confusion_matrix.h
  arbor/tree/decision_tree.h
  arbor/tree/evaluation.h
  arbor/tree/grower.h
  arbor/tree/predictor.h
  arbor/tree/rating.h
  arbor/tree/table_classification.h)
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
