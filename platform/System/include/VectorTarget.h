// VectorTarget: which of a kernel's compiled variants this processor runs.
//
// Kernels are written with Highway's headers and compiled once for each target. Highway's own
// chooser lives in a library that measures the processor's clock while it is loaded, which costs
// more than opening a file does; so the choice is made here and the library is not needed.
#ifndef SYSTEM_VECTORTARGET_H
#define SYSTEM_VECTORTARGET_H

#include <hwy/highway.h>

#include <cstdint>

namespace vectortarget
{

/// Targets that may be chosen, bits of HWY_AVX2 and so on. Tests narrow it to reach each variant.
inline std::int64_t sAllowed = ~std::int64_t{0};

/// Targets that the processor has.
inline std::int64_t OfProcessor()
{
    std::int64_t targets = 0;
    if (__builtin_cpu_supports("ssse3"))
        targets |= HWY_SSSE3;
    if (__builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("pclmul") &&
        __builtin_cpu_supports("aes"))
        targets |= HWY_SSE4;
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
        __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2"))
        targets |= HWY_AVX2;
    return targets;
}

/// The best variant for this processor; those that were not compiled are null.
template <typename Function>
Function Choose(Function inAVX2, Function inSSE4, Function inSSSE3, Function inBaseline)
{
    const std::int64_t targets = OfProcessor() & sAllowed;
    if (inAVX2 && (targets & HWY_AVX2) != 0)
        return inAVX2;
    if (inSSE4 && (targets & HWY_SSE4) != 0)
        return inSSE4;
    if (inSSSE3 && (targets & HWY_SSSE3) != 0)
        return inSSSE3;
    return inBaseline;
}

}  // namespace vectortarget

/// The address of the best variant of a function that every target defines in its HWY_NAMESPACE; in
/// the part of a file that HWY_ONCE guards, in the namespace around those of the targets.
#define VECTOR_CHOOSE(FUNCTION)                                                           \
    vectortarget::Choose<decltype(&HWY_STATIC_DISPATCH(FUNCTION))>(                       \
        HWY_CHOOSE_AVX2(FUNCTION), HWY_CHOOSE_SSE4(FUNCTION), HWY_CHOOSE_SSSE3(FUNCTION), \
        &HWY_STATIC_DISPATCH(FUNCTION))

#endif
