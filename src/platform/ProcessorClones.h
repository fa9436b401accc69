// Functions that are compiled twice: for every processor, and for those with AVX2.
//
//   CLONED_FOR_PROCESSORS std::size_t Count(std::string_view bytes) { ... }
//
// The loader picks the one that fits, once. Systems without such a loader, other compilers and
// builds made for finding errors have the common one alone; both come from the same source.
#pragma once

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) && \
    defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define CLONED_FOR_PROCESSORS [[gnu::target_clones("default", "avx2")]]
#else
#define CLONED_FOR_PROCESSORS
#endif
