// AudioTypes: how the host names channels and sample widths inside its own house.
#ifndef KELPMEDIATYPES_AUDIOTYPES_H
#define KELPMEDIATYPES_AUDIOTYPES_H

#include "kelpcore/utility/SmallBlockAllocator.h"

#include <cstdint>
#include <vector>

namespace kelpmediatypes
{

/// A channel's place: 100 left, 101 right, ..., 0 unnamed. Any 32-bit value may arrive.
enum class AudioChannelLabel : std::uint32_t
{
    Unnamed = 0,
    Left = 100,
    Right = 101
};

/// Bits per sample as the host counts them: 10, 20, 30, 40 for 8, 16, 24, 32.
enum class AudioSampleType : std::int32_t
{
    Bits8 = 10,
    Bits16 = 20,
    Bits24 = 30,
    Bits32 = 40
};

/// One channel of a layout.
struct AudioChannelDescription
{
    AudioChannelLabel mLabel = AudioChannelLabel::Unnamed;
};
static_assert(sizeof(AudioChannelDescription) == 4);

using AudioChannelDescriptions =
    std::vector<AudioChannelDescription,
                kelpcore::utility::SmallBlockAllocator<AudioChannelDescription>>;

}  // namespace kelpmediatypes

#endif
