# Every header compiles by itself: one generated source per header that includes only it.
function(quillpg_header_alone target)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/include/*.h ${PROJECT_SOURCE_DIR}/server/*.h)
  set(sources)
  foreach(header ${headers})
    string(REGEX REPLACE "^(include|server)/" "" include ${header})
    string(REPLACE "/" "_" name ${include})
    set(source ${CMAKE_CURRENT_BINARY_DIR}/header_alone/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${include}\"\n")
    list(APPEND sources ${source})
  endforeach()
  add_library(${target} OBJECT ${sources})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/server)
  # Syntax alone is asked for: nothing is generated, nothing is linked.
  target_compile_options(${target} PRIVATE -fsyntax-only)
  quillpg_warnings(${target})
endfunction()
