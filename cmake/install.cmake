# `cmake --install` gives a copy that find_package(arbor) finds: the library and the headers that explain it. The headers
# of the measures' insides stay behind.
include(CMakePackageConfigHelpers)

set_target_properties(arbor PROPERTIES EXPORT_NAME arbor)
install(TARGETS arbor EXPORT arbor_targets)
install(EXPORT arbor_targets FILE arbor-config.cmake NAMESPACE arbor:: DESTINATION lib/cmake/arbor)
write_basic_package_version_file(arbor-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/arbor-config-version.cmake DESTINATION lib/cmake/arbor)

install(DIRECTORY arbor/utils DESTINATION include/arbor FILES_MATCHING PATTERN "*.h")
install(
  FILES arbor/model/column.h arbor/model/column_bool.h arbor/model/column_typed.h arbor/model/o_set.h
        arbor/model/o_set_typed.h arbor/model/options.h arbor/model/w_sequence.h arbor/model/weight_type.h
  DESTINATION include/arbor/model)
