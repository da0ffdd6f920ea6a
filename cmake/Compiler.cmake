set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wno-missing-field-initializers -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # False alarms of this release on std::string and std::vector (GCC bugs 105651, 105329).
  add_compile_options(-Wno-restrict -Wno-stringop-overread -Wno-stringop-overflow -Wno-array-bounds)
  # The same on optionals of temporaries, where it inlines as much as releases do (105562).
  add_compile_options($<$<CONFIG:Release>:-Wno-maybe-uninitialized>)
endif()
# The model and the analysis are defined by their formulas in doubles, one
# rounding per operation; fused multiply-add would change the last digits.
add_compile_options(-ffp-contract=off)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

set(TAVI_SANITIZER "" CACHE STRING "address or thread")
if(TAVI_SANITIZER STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(TAVI_SANITIZER STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

if(TAVI_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
