# One interface target that carries the language level, the warnings and the strict Qt
# defines; every target of the project links it so that all code is held to the same rules.
add_library(tessarin_common INTERFACE)
target_compile_features(tessarin_common INTERFACE cxx_std_20)
target_compile_options(tessarin_common INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic>
  $<$<AND:$<CXX_COMPILER_ID:GNU,Clang>,$<BOOL:${TESSARIN_WERROR}>>:-Werror>)
target_compile_definitions(tessarin_common INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CONTEXTLESS_CONNECT
  QT_NO_KEYWORDS
  TESSARIN_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
  TESSARIN_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  TESSARIN_VERSION_PATCH=${PROJECT_VERSION_PATCH})
target_include_directories(tessarin_common INTERFACE ${PROJECT_SOURCE_DIR}/src)
