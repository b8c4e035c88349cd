# One place for the compile settings that every vinora target shares.
add_library(vinora_settings INTERFACE)
target_compile_features(vinora_settings INTERFACE cxx_std_20)
target_compile_definitions(vinora_settings INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_CONTEXTLESS_CONNECT
  QT_NO_URL_CAST_FROM_STRING
  QT_USE_QSTRINGBUILDER
  QT_DISABLE_DEPRECATED_UP_TO=0x060000)
target_compile_options(vinora_settings INTERFACE -Wall -Wextra -Wpedantic -Wno-missing-field-initializers)

# vinora_add_library(name folder sources... [LINKS libs...])
function(vinora_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/..)
  target_link_libraries(${name} PUBLIC vinora_settings ${ARG_LINKS})
endfunction()

# vinora_add_test(name sources... LINKS libs...)
function(vinora_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE vinora_settings vinora_testsupport Qt6::Test ${ARG_LINKS})
  # Tests may write plain string literals for expected texts.
  target_compile_options(${name} PRIVATE -UQT_NO_CAST_FROM_ASCII -DQT_RESTRICTED_CAST_FROM_ASCII)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8"
    TIMEOUT 300)
endfunction()
