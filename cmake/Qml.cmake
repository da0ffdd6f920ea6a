# tavi_qml(<folder> URI <uri> [SOURCES <file>...] [DEPS <target>...])
# Makes the static library tavi_<folder>_qml: the QML module <uri> of every
# .qml file in src/<folder> and of the given C++ sources, built into the program
# below qrc:/qt/qml. No ahead-of-time compilation: it costs seconds a file and
# saves milliseconds.
function(tavi_qml folder)
  cmake_parse_arguments(ARG "" "URI" "SOURCES;DEPS" ${ARGN})
  set(name tavi_${folder}_qml)
  file(GLOB files RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/src/${folder}/*.qml)
  foreach(file IN LISTS files)
    get_filename_component(alias ${file} NAME)
    set_source_files_properties(${file} PROPERTIES QT_RESOURCE_ALIAS ${alias})
    file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/${file} singleton REGEX "^pragma Singleton")
    if(singleton)
      set_source_files_properties(${file} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
    endif()
  endforeach()
  string(REPLACE "." "/" path ${ARG_URI})
  set(CMAKE_AUTOMOC ON)
  qt_add_qml_module(${name} STATIC
    URI ${ARG_URI}
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${path}
    NO_PLUGIN
    NO_CACHEGEN
    QML_FILES ${files}
    SOURCES ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC Qt6::Quick ${ARG_DEPS})
  # What registers the types names their headers without a folder.
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src/${folder})
endfunction()
