# orbin_add_test(<name> SOURCES ... [LIBS ...] [TIMEOUT seconds] [LABELS ...])
#
# The one way a test joins ctest. Every test runs:
#  - on the offscreen platform, so widgets work without a display;
#  - with HOME and the XDG folders in a fresh temporary directory, so settings
#    and merge logs of one test never leak into another or into the user's;
#  - in the C.UTF-8 locale;
#  - under a timeout.
# Tests link libraries of the project; sources are never compiled twice.
set(ORBIN_TEST_RUNNER ${CMAKE_SOURCE_DIR}/cmake/run-isolated.sh)

add_library(orbin_test_pch STATIC ${CMAKE_SOURCE_DIR}/cmake/pch_dummy.cpp)
target_link_libraries(orbin_test_pch PUBLIC Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Test)
target_precompile_headers(orbin_test_pch PRIVATE ${ORBIN_PCH_WIDGETS} <QtTest/QtTest>)

# Under the sanitizers a finding fails the test; leaks inside system libraries
# that Qt loads (fonts, X) are not ours and are suppressed.
set(ORBIN_SANITIZER_ENVIRONMENT "")
if(ORBIN_SANITIZE)
  set(ORBIN_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
endif()

function(orbin_add_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 120)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Test)
  if(TARGET orbin_test_support)
    target_link_libraries(${name} PRIVATE orbin_test_support)
  endif()
  target_precompile_headers(${name} REUSE_FROM orbin_test_pch)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${name} COMMAND ${ORBIN_TEST_RUNNER} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${T_TIMEOUT}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LANG=C.UTF-8;ORBIN_SOURCE_DIR=${CMAKE_SOURCE_DIR};ORBIN_BINARY_DIR=${CMAKE_BINARY_DIR}")
  if(ORBIN_SANITIZER_ENVIRONMENT)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ${ORBIN_SANITIZER_ENVIRONMENT})
  endif()
  if(T_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${T_LABELS}")
  endif()
endfunction()
