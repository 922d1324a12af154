#include "file/write/mpeg4/GaplessItem.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string>

namespace audiotoolbox::mpeg4writer
{
namespace
{

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

// Words of hexadecimal digits: 0, priming, remainder, valid frames, eight more that are 0.
std::string GaplessText(const GaplessFrames& inFrames)
{
    char words[64];
    const UInt64 remainder = inFrames.mTotal - inFrames.mPriming - inFrames.mValid;
    (void)std::snprintf(words, sizeof(words), " 00000000 %08" PRIX64 " %08" PRIX64 " %016" PRIX64,
                        std::uint64_t{inFrames.mPriming}, std::uint64_t{remainder},
                        std::uint64_t{inFrames.mValid});
    std::string text = words;
    for (int word = 0; word < 8; ++word)
        text += " 00000000";
    return text;
}

void PutText(const std::string& inText, BoxBuilder& ioBoxes)
{
    for (const char character : inText)
        ioBoxes.PutU8(static_cast<UInt8>(character));
}

void PutNamed(UInt32 inType, const std::string& inText, BoxBuilder& ioBoxes)
{
    ioBoxes.BeginFull(inType, 0);
    PutText(inText, ioBoxes);
    ioBoxes.End();
}

void PutItem(const std::string& inText, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kUTF8 = 1;
    ioBoxes.Begin(Code('-', '-', '-', '-'));
    PutNamed(Code('m', 'e', 'a', 'n'), "com.apple.iTunes", ioBoxes);
    PutNamed(Code('n', 'a', 'm', 'e'), "iTunSMPB", ioBoxes);
    ioBoxes.BeginFull(Code('d', 'a', 't', 'a'), 0, kUTF8);
    ioBoxes.PutU32(0);  // locale
    PutText(inText, ioBoxes);
    ioBoxes.End();
    ioBoxes.End();
}

}  // namespace

void PutGaplessItem(const GaplessFrames& inFrames, BoxBuilder& ioBoxes)
{
    ioBoxes.Begin(Code('u', 'd', 't', 'a'));
    ioBoxes.BeginFull(Code('m', 'e', 't', 'a'), 0);
    ioBoxes.BeginFull(Code('h', 'd', 'l', 'r'), 0);
    ioBoxes.PutU32(0);
    ioBoxes.PutU32(Code('m', 'd', 'i', 'r'));
    ioBoxes.PutU32(Code('a', 'p', 'p', 'l'));
    ioBoxes.PutZeros(8 + 1);  // and an empty name
    ioBoxes.End();
    ioBoxes.Begin(Code('i', 'l', 's', 't'));
    PutItem(GaplessText(inFrames), ioBoxes);
    ioBoxes.End();
    ioBoxes.End();
    ioBoxes.End();
}

}  // namespace audiotoolbox::mpeg4writer
