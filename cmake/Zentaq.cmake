# How a folder of src/, an app or a test folder becomes a target.

# zentaq_batches(TARGET [files...]) compiles the files of a target in batches where ZENTAQ_UNITY asks for it. The files
# named here (or matched: *.cpp) stay apart: their helpers bear names that others of the folder use too.
function(zentaq_batches target)
  if(ZENTAQ_UNITY)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
    file(GLOB apart ${ARGN})
    if(apart)
      set_source_files_properties(${apart} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endif()
endfunction()

# zentaq_headers(TARGET OWNER headers...) has TARGET read once, in the library OWNER for all who name it, what nearly
# every file includes. Only in batches: a file that is compiled by itself stands on its own includes.
function(zentaq_headers target owner)
  if(ZENTAQ_UNITY)
    if(target STREQUAL owner)
      target_precompile_headers(${target} PRIVATE ${ARGN})
    else()
      target_precompile_headers(${target} REUSE_FROM ${owner})
    endif()
    # Without the first the compiler cache passes these by; with them g++ 12 reports joined strings falsely.
    target_compile_options(${target} PRIVATE -fpch-preprocess -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
  endif()
endfunction()
set(ZENTAQ_HEADERS <algorithm> <array> <cmath> <filesystem> <functional> <map> <memory> <optional> <set> <span>
    <string> <string_view> <system_error> <utility> <vector>)
set(ZENTAQ_QT_HEADERS ${ZENTAQ_HEADERS} <QApplication> <QBoxLayout> <QLabel> <QLineEdit> <QPainter> <QPointer>
    <QPushButton> <QTimer> <QWidget>)

# zentaq_library(NAME [QT] LINK targets... [PRIVATE targets...] [APART files...])
# makes zentaq_NAME from src/NAME/*.cpp; a folder with headers only becomes an interface.
function(zentaq_library name)
  cmake_parse_arguments(ARG "QT" "" "LINK;PRIVATE;APART" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.h)
  if(sources)
    add_library(zentaq_${name} STATIC ${sources} ${headers})
    target_include_directories(zentaq_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(zentaq_${name} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE})
    list(TRANSFORM ARG_APART PREPEND ${PROJECT_SOURCE_DIR}/src/${name}/)
    zentaq_batches(zentaq_${name} ${ARG_APART})
    if(ARG_QT)
      set_target_properties(zentaq_${name} PROPERTIES AUTOMOC ON)
      zentaq_headers(zentaq_${name} zentaq_qt ${ZENTAQ_QT_HEADERS})
    else()
      zentaq_headers(zentaq_${name} zentaq_base ${ZENTAQ_HEADERS})
    endif()
  else()
    add_library(zentaq_${name} INTERFACE)
    target_include_directories(zentaq_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(zentaq_${name} INTERFACE ${ARG_LINK} ${ARG_PRIVATE})
  endif()
endfunction()

# zentaq_program(NAME [QT] LINK targets... [APART files...]) makes NAME from apps/NAME/*.cpp.
function(zentaq_program name)
  cmake_parse_arguments(ARG "QT" "" "LINK;APART" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/apps/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARG_LINK})
  # A program's own files read options and print; the work is done in the libraries.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
  list(TRANSFORM ARG_APART PREPEND ${PROJECT_SOURCE_DIR}/apps/${name}/)
  zentaq_batches(${name} ${ARG_APART})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/app)
  if(ARG_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    zentaq_headers(${name} zentaq_qt)
  else()
    zentaq_headers(${name} zentaq_base)
  endif()
endfunction()

# zentaq_tests(NAME LABEL label LINK targets... [TIMEOUT seconds] [HEADERS target] [APART files...])
# makes test_NAME from tests/NAME/*_test.cpp and the helpers beside them. They read the precompiled headers of the
# target under HEADERS, zentaq_test_main as a rule.
function(zentaq_tests name)
  cmake_parse_arguments(ARG "" "LABEL;TIMEOUT;HEADERS" "LINK;APART" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  if(NOT ARG_HEADERS)
    set(ARG_HEADERS zentaq_test_main)
  endif()
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE ${ARG_LINK} GTest::gmock)
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_precompile_headers(test_${name} REUSE_FROM ${ARG_HEADERS})
  target_compile_options(test_${name} PRIVATE -fpch-preprocess)  # without it the compiler cache passes these by
  list(TRANSFORM ARG_APART PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/${name}/)
  zentaq_batches(test_${name} ${ARG_APART})
  target_compile_definitions(test_${name} PRIVATE
    ZENTAQ_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    ZENTAQ_APP_DIR="${PROJECT_BINARY_DIR}/app"
    ZENTAQ_PYTHON="${Python3_EXECUTABLE}")
  include(GoogleTest)
  gtest_discover_tests(test_${name}
    TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT ${ARG_TIMEOUT}
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
