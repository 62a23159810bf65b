# What makes a mistake with memory end the run instead of letting input take it over. The programs
# read files from anywhere. Sanitizers find the same and more, and FORTIFY would hide calls from
# them. All code is position-independent already.
function(skeinmake_harden target)
  target_compile_options(${target} PRIVATE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong)
  target_link_options(${target} PRIVATE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>
    -Wl,-z,relro,-z,now,-z,noexecstack)
endfunction()

# skeinmake_configure(TARGET [TEST_CODE]): the warnings and, when asked for, the sanitizers or the
# counters that every target of this project is compiled with, and the hardening of a release.
# libxml++'s own headers are system headers and stay out of it. TEST_CODE is for what only tests, and
# doesn't work long at it.
function(skeinmake_configure target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "TEST_CODE" "" "")
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wcast-qual -Wnon-virtual-dtor -Woverloaded-virtual -Wundef
    $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
    $<$<CXX_COMPILER_ID:Clang>:-Wreserved-macro-identifier>
    $<$<BOOL:${SKEINMAKE_WERROR}>:-Werror>)
  target_compile_options(${target} PRIVATE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
  if(SKEINMAKE_SANITIZE)
    set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(${target} PRIVATE ${flags})
    target_link_options(${target} PRIVATE ${flags})
    if(arg_TEST_CODE)
      # Sanitizers see as much of unoptimised code, which is compiled in half the time.
      target_compile_options(${target} PRIVATE -O0)
    elseif(SKEINMAKE_BUILD_FUZZ)
      # Fuzzers go by what the code under test does, so that has to be watched, too.
      target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
  elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    skeinmake_harden(${target})
  endif()
  if(SKEINMAKE_COVERAGE)
    target_compile_options(${target} PRIVATE -O0 --coverage)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()
