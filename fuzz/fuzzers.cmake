# skeinmake_fuzzer(NAME [SOURCES FILE...] [MUTATOR FILE...] LIBRARIES TARGET...): the fuzzer of
# NAME_fuzzer.cc. MUTATOR is what only makes inputs. The target `fuzzers` builds all of them.
function(skeinmake_fuzzer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;MUTATOR;LIBRARIES")
  add_library(${name}_input OBJECT ${name}_fuzzer.cc ${arg_SOURCES})
  target_include_directories(${name}_input PRIVATE
    "${CMAKE_CURRENT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/tests/unit")
  target_link_libraries(${name}_input PUBLIC ${arg_LIBRARIES})
  skeinmake_configure(${name}_input)
  if(SKEINMAKE_PRECOMPILE)
    target_precompile_headers(${name}_input REUSE_FROM skeinmake_lib)
  endif()

  if(SKEINMAKE_BUILD_FUZZ)
    add_executable(${name}_fuzzer ${arg_MUTATOR})
    target_link_libraries(${name}_fuzzer PRIVATE ${name}_input)
    skeinmake_configure(${name}_fuzzer)
    target_link_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer)
    set_target_properties(${name}_fuzzer PROPERTIES LINKER_LANGUAGE CXX)
    add_dependencies(fuzzers ${name}_fuzzer)
  endif()

  if(SKEINMAKE_BUILD_TESTS)
    add_executable(${name}_replay replay_main.cc)
    target_link_libraries(${name}_replay PRIVATE ${name}_input)
    skeinmake_configure(${name}_replay)
    add_test(NAME fuzz_corpus/${name}
      COMMAND ${name}_replay "${CMAKE_CURRENT_SOURCE_DIR}/seeds/${name}"
        "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
  endif()
endfunction()
