#pragma once

/**
 * Lets one function use instructions that not every processor has.
 *
 * The target is each function's, not the file's: under a file's own target the compiler would also
 * emit inline functions of Qt and of the standard library for those instructions, and the linker
 * may hand these copies to code that runs on older processors. Who calls such a function asks
 * ryCpuHasFeature() first.
 */
#if defined(__x86_64__) || defined(__i386__)
#define RY_HAS_X86_VECTORS 1 // and with them <immintrin.h>
#define RY_TARGET_SSSE3 __attribute__((target("ssse3")))
#define RY_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define RY_HAS_X86_VECTORS 0
#define RY_TARGET_SSSE3
#define RY_TARGET_AVX2
#endif
