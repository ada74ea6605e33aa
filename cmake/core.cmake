# The library of the core, which needs nothing but the standard library.
add_library(arbor)
add_library(arbor::arbor ALIAS arbor)
arbor_library(arbor)
add_subdirectory(arbor/utils)
add_subdirectory(arbor/model)
target_sources(arbor PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
  arbor/model/column.h
  arbor/model/column_bool.h
  arbor/model/column_typed.h
  arbor/model/make_column.h
  arbor/model/o_set.h
  arbor/model/o_set_typed.h
  arbor/model/options.h
  arbor/model/w_sequence.h
  arbor/model/weight_type.h
  arbor/utils/allocatable.h
  arbor/utils/binary_search_mid.h
  arbor/utils/bindevice.h
  arbor/utils/bitmap.h
  arbor/utils/counting_sort.h
  arbor/utils/datatype.h
  arbor/utils/file_device.h
  arbor/utils/ibinstream.h
  arbor/utils/memory_device.h
  arbor/utils/nocopy.h
  arbor/utils/obinstream.h
  arbor/utils/pair.h
  arbor/utils/set.h
  arbor/utils/string_util.h)
