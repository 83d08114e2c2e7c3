# Builds everything with the sanitizers named by VOR_SANITIZER.
if(VOR_SANITIZER)
    add_compile_options(-fsanitize=${VOR_SANITIZER} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VOR_SANITIZER})
endif()
