# tavi_folder(<folder> [DEPS <target>...] [QT])
# Makes the static library tavi_<folder> of every source file of the folder
# ("/" in the folder's name becomes "_"), an interface library where the
# folder holds headers only. QT switches the meta-object compiler on.
function(tavi_folder folder)
  cmake_parse_arguments(ARG "QT" "" "DEPS" ${ARGN})
  string(REPLACE "/" "_" name "tavi_${folder}")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$") # belongs to a program
  if(ARG_QT)
    file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
    list(APPEND sources ${headers})
  endif()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
    if(ARG_QT)
      set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
  endif()
endfunction()

# tavi_tests(<folder> [DEPS <target>...])
# Makes one test program of every source file in tests/<folder> and registers
# it; TAVI_TEST_DATA and TAVI_SOURCE_DIR are compiled in.
function(tavi_tests folder)
  cmake_parse_arguments(ARG "" "TIMEOUT" "DEPS" ${ARGN})
  string(REPLACE "/" "_" name "${folder}_tests")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gmock_main)
  target_compile_definitions(${name} PRIVATE
    TAVI_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    TAVI_BINARY_DIR="${CMAKE_BINARY_DIR}/bin")
  add_test(NAME ${folder} COMMAND ${name})
  set_tests_properties(${folder} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
