# The compile options every target of ours shares. Linked privately, so that nothing leaks into Qt's own code.
add_library(sonotrace_options INTERFACE)
target_compile_options(sonotrace_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # The sample arithmetic is pinned operation by operation: a fused multiply-add would round once where two
    # roundings are meant.
    -ffp-contract=off)
target_include_directories(sonotrace_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

if(SONOTRACE_SANITIZE)
    target_compile_options(sonotrace_options INTERFACE
        -fsanitize=${SONOTRACE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
    target_link_options(sonotrace_options INTERFACE -fsanitize=${SONOTRACE_SANITIZE})
endif()
