// Dither: noise that makes the error of rounding independent of the signal.
#ifndef HOST_DITHER_H
#define HOST_DITHER_H

#include <cstdint>

namespace host
{

/// Triangular noise. The same seed gives the same noise; two channels get different seeds.
class DitherNoise
{
public:
    explicit DitherNoise(std::uint32_t inSeed) : mState(inSeed * 2654435761U + 1013904223U)
    {
        if (mState == 0)
            mState = 1;  // the generator would stay there
    }

    /// Above -1 and below 1, around 0: in steps of what is rounded to.
    float NextStep()
    {
        const std::uint32_t bits = Next();
        const auto difference =
            static_cast<std::int32_t>(bits >> 16) - static_cast<std::int32_t>(bits & 0xFFFF);
        return static_cast<float>(difference) * (1.0F / 65536.0F);
    }

    /// The same for integers that lose inShift bits, at most 16; in units before the loss.
    std::int32_t NextInteger(int inShift)
    {
        const std::uint32_t bits = Next();
        const auto mask = (1U << inShift) - 1;
        return static_cast<std::int32_t>((bits >> 16) & mask) -
               static_cast<std::int32_t>(bits & mask);
    }

private:
    std::uint32_t Next()
    {
        mState ^= mState << 13;
        mState ^= mState >> 17;
        mState ^= mState << 5;
        return mState;
    }

    std::uint32_t mState;
};

}  // namespace host

#endif
