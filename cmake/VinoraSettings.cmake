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

# AddressSanitizer and UBSan. VINORA_SANITIZE builds everything with them (make sanitize);
# otherwise the fuzz targets of `make test` link sanitized twins of the logic libraries
# they exercise (built only when a fuzz target needs them).
option(VINORA_SANITIZE "Build every target with AddressSanitizer and UBSan" OFF)
option(VINORA_LIBFUZZER "Build the fuzz targets for libFuzzer (clang only; make fuzz)" OFF)
add_library(vinora_sanitizer INTERFACE)
set(VINORA_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
if(VINORA_LIBFUZZER)
  list(APPEND VINORA_SANITIZER_FLAGS -fsanitize=fuzzer-no-link)
endif()
target_compile_options(vinora_sanitizer INTERFACE ${VINORA_SANITIZER_FLAGS})
target_link_options(vinora_sanitizer INTERFACE -fsanitize=address,undefined)
if(VINORA_SANITIZE)
  target_link_libraries(vinora_settings INTERFACE vinora_sanitizer)
endif()

# Each library as its sanitized twin where there is one (fuzz targets and the twins link
# them; with VINORA_SANITIZE everything is sanitized and no twin is made).
function(vinora_fuzz_link out)
  set(result "")
  foreach(link ${ARGN})
    if(TARGET ${link}_san)
      list(APPEND result ${link}_san)
    else()
      list(APPEND result ${link})
    endif()
  endforeach()
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# vinora_add_library(name folder sources... [LINKS libs...])
function(vinora_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/..)
  target_link_libraries(${name} PUBLIC vinora_settings ${ARG_LINKS})
  if(NOT VINORA_SANITIZE)
    # The sanitized twin: same sources, twins of the vinora libraries it links.
    vinora_fuzz_link(twin_links ${ARG_LINKS})
    add_library(${name}_san STATIC EXCLUDE_FROM_ALL ${ARG_SOURCES})
    target_include_directories(${name}_san PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/..)
    target_link_libraries(${name}_san PUBLIC vinora_settings vinora_sanitizer ${twin_links})
    target_compile_options(${name}_san PRIVATE -O1)
  endif()
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
