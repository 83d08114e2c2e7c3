# Builds everything with the sanitizers named by VOR_SANITIZER.
if(VOR_SANITIZER)
    add_compile_options(-fsanitize=${VOR_SANITIZER} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    # g++ 12 loses track of initialisations in instrumented code.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=${VOR_SANITIZER})
endif()

# libFuzzer is told which ways the code took.
if(VOR_BUILD_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
