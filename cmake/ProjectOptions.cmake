# skeinmake_configure(TARGET): the warnings and, when asked for, the sanitizers that every target of
# this project is compiled with. libxml++'s own headers are system headers and stay out of it.
function(skeinmake_configure target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wcast-qual -Wnon-virtual-dtor -Woverloaded-virtual -Wundef
    $<$<BOOL:${SKEINMAKE_WERROR}>:-Werror>)
  target_compile_options(${target} PRIVATE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
  if(SKEINMAKE_SANITIZE)
    set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(${target} PRIVATE ${flags})
    target_link_options(${target} PRIVATE ${flags})
  endif()
endfunction()
