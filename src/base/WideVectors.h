#pragma once

/// Before a function whose loops the compiler vectorises: where the loader can choose by processor, it gets a
/// version with wider vectors. The results are the same. (The sanitizers do not work in the loader's choice.)
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
#define SONOTRACE_WIDE_VECTORS [[gnu::target_clones("arch=x86-64-v4", "avx2", "default")]]
#else
#define SONOTRACE_WIDE_VECTORS
#endif
