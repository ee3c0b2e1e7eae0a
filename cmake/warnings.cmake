# One warning list for every target of the tree. Errors only where the build asks for them, so that a
# newer compiler does not break the build of somebody who only wants to use the library.
function(quillpg_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wno-sign-conversion)  # clang counts it to -Wconversion
  elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-restrict)  # false alarms at -O3 (GCC PR105329)
  endif()
  if(QUILLPG_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
