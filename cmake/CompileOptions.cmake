# What every target of this tree is compiled with: warnings, and sanitizers when asked for.
# A sanitizer report ends the program, so that a test cannot pass over it.

# -Wrestrict is off: g++ 12 reports it for harmless std::string sums at -O3.
function(ixomep_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                           $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(IXOMEP_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

if(IXOMEP_SANITIZE)
  add_compile_options(-fsanitize=${IXOMEP_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${IXOMEP_SANITIZE})
endif()
