# tavi_folder(<folder> [DEPS <target>...] [QT])
# Makes the static library tavi_<folder> of every source file of the folder
# ("/" in the folder's name becomes "_"), an interface library where the
# folder holds headers only. QT switches the meta-object compiler on. View
# models, and services with observable fields, stand on Qt wherever they live: those of a folder
# without QT make a second library, tavi_<folder>_viewmodels, so that its logic does without.
set(TAVI_OBSERVABLE "(ViewModel|CountdownOverlayService|RecordingStatusBarService|InputMonitoringService)")

function(tavi_folder folder)
  cmake_parse_arguments(ARG "QT" "" "DEPS" ${ARGN})
  string(REPLACE "/" "_" name "tavi_${folder}")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$") # belongs to a program
  list(FILTER sources EXCLUDE REGEX "QuickItem\\.cpp$") # drawn items belong to the QML module
  if(NOT ARG_QT)
    tavi_view_models(${folder} ${name})
    list(FILTER sources EXCLUDE REGEX "${TAVI_OBSERVABLE}\\.cpp$")
  else()
    file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
    list(APPEND sources ${headers})
  endif()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
    if(ARG_QT)
      # The standard headers are read right only behind their configuration.
      set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOMOC_MOC_OPTIONS "--include=cstddef")
      add_library(${name}_viewmodels ALIAS ${name}) # for tests
    endif()
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
  endif()
endfunction()

function(tavi_view_models folder logic)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp
    ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  list(FILTER sources INCLUDE REGEX "${TAVI_OBSERVABLE}\\.(cpp|h)$")
  if(sources)
    add_library(${logic}_viewmodels STATIC ${sources})
    target_link_libraries(${logic}_viewmodels PUBLIC ${logic} Qt6::Core QCoro6::Coro)
    # The standard headers are read right only behind their configuration.
    set_target_properties(${logic}_viewmodels PROPERTIES AUTOMOC ON
      AUTOMOC_MOC_OPTIONS "--include=cstddef")
  endif()
endfunction()

# tavi_tests(<folder> [DEPS <target>...])
# Makes one test program of every source file in tests/<folder> and registers
# it; TAVI_TEST_DATA and TAVI_BINARY_DIR are compiled in. The tests of view
# models and the like make a second program with a Qt loop.
function(tavi_tests folder)
  cmake_parse_arguments(ARG "" "TIMEOUT" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  set(view_models ${sources})
  list(FILTER sources EXCLUDE REGEX "${TAVI_OBSERVABLE}[A-Za-z]*Test\\.cpp$")
  list(FILTER view_models INCLUDE REGEX "${TAVI_OBSERVABLE}[A-Za-z]*Test\\.cpp$")
  if(sources)
    tavi_test_program(${folder} "${sources}" "${ARG_DEPS}" "${ARG_TIMEOUT}" GTest::gmock_main)
  endif()
  if(view_models)
    list(APPEND view_models ${CMAKE_SOURCE_DIR}/tests/support/QtMain.cpp)
    tavi_test_program(${folder}_viewmodels "${view_models}" "${ARG_DEPS};tavi_${folder}_viewmodels;Qt6::Test"
      "${ARG_TIMEOUT}" GTest::gmock)
  endif()
endfunction()

function(tavi_test_program folder sources deps timeout main)
  string(REPLACE "/" "_" name "${folder}_tests")
  if(NOT timeout)
    set(timeout 300)
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${deps} ${main})
  target_compile_definitions(${name} PRIVATE
    TAVI_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    TAVI_BINARY_DIR="${CMAKE_BINARY_DIR}/bin")
  add_test(NAME ${folder} COMMAND ${name})
  set_tests_properties(${folder} PROPERTIES TIMEOUT ${timeout})
endfunction()
