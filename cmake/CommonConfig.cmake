# One interface target that carries the language level, the warnings and the strict Qt
# defines; every target of the project links it so that all code is held to the same rules.
add_library(tessarin_common INTERFACE)
target_compile_features(tessarin_common INTERFACE cxx_std_20)
target_compile_options(tessarin_common INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic>
  $<$<AND:$<CXX_COMPILER_ID:GNU,Clang>,$<BOOL:${TESSARIN_WERROR}>>:-Werror>
  # GCC 12 at -O3 reports -Wrestrict false positives inside libstdc++'s own string code
  # (GCC bug 105329, fixed in GCC 13): silenced for that compiler and that build only.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_GREATER_EQUAL:$<CXX_COMPILER_VERSION>,12>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>,$<CONFIG:Release>>:-Wno-restrict>)
target_compile_definitions(tessarin_common INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CONTEXTLESS_CONNECT
  QT_NO_KEYWORDS
  TESSARIN_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
  TESSARIN_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  TESSARIN_VERSION_PATCH=${PROJECT_VERSION_PATCH})
target_include_directories(tessarin_common INTERFACE ${PROJECT_SOURCE_DIR}/src)
