# hnsyb_subsystem(<folder>)
#   Makes the object library hnsyb_<name> from the .cpp/.c files of
#   src/<folder> (name: the folder with '/' turned into '_') and records it for
#   the shared library.  A folder that holds no sources yet makes no target.
#   Its headers, but for *_impl.h, are installed under include/hnsyb/<folder>.
set_property(GLOBAL PROPERTY HNSYB_OBJECT_LIBS "")

function(hnsyb_subsystem folder)
  string(REPLACE "/" "_" name "${folder}")
  file(GLOB sources CONFIGURE_DEPENDS
       "${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp" "${PROJECT_SOURCE_DIR}/src/${folder}/*.c")
  file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/${folder}/*.h")
  # *_impl.h headers are the library's own and are not installed.
  list(FILTER headers EXCLUDE REGEX "_impl\\.h$")
  if(headers)
    install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/hnsyb/${folder})
  endif()
  if(NOT sources)
    return()
  endif()
  add_library(hnsyb_${name} OBJECT ${sources})
  target_include_directories(hnsyb_${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(hnsyb_${name} PRIVATE HNSYB_BUILDING_LIBRARY
    $<$<BOOL:${HNSYB_FAULT_INJECTION}>:HNSYB_FAULT_INJECTION=1>)
  target_link_libraries(hnsyb_${name} PRIVATE hnsyb_warnings Threads::Threads ICU::uc)
  set_property(GLOBAL APPEND PROPERTY HNSYB_OBJECT_LIBS hnsyb_${name})
endfunction()
