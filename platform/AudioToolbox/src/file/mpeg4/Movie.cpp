#include "file/mpeg4/Movie.h"

#include <algorithm>

namespace audiotoolbox::mpeg4
{
namespace
{

// Beyond these a head is damaged or hostile, not unusual.
constexpr std::size_t kMaxTracks = 256;

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

// Takes a box's version and flags; true for the version with fields of 64 bits.
bool ReadVersion(BoxCursor& ioCursor, UInt32* outFlags = nullptr)
{
    const UInt8 version = ioCursor.ReadU8();
    const UInt32 flags = ioCursor.ReadU24();
    if (outFlags != nullptr)
        *outFlags = flags;
    return version == 1;
}

// The timescale of a movie's or a media's header.
UInt32 ReadTimescale(BoxCursor inHeader)
{
    const bool isWide = ReadVersion(inHeader);
    inHeader.Skip(isWide ? 16 : 8);  // creation and modification
    return inHeader.ReadU32();
}

void ReadTrackHeader(BoxCursor inHeader, Track& ioTrack)
{
    UInt32 flags = 0;
    const bool isWide = ReadVersion(inHeader, &flags);
    inHeader.Skip(isWide ? 16 : 8);
    ioTrack.mID = inHeader.ReadU32();
    ioTrack.mIsEnabled = (flags & 1u) != 0;
}

SInt64 SignedTime(UInt64 inField, bool inIsWide)
{
    return inIsWide ? static_cast<SInt64>(inField)
                    : SInt64{static_cast<SInt32>(static_cast<UInt32>(inField))};
}

void ReadEdits(BoxCursor inList, Edits& outEdits)
{
    const bool isWide = ReadVersion(inList);
    for (UInt32 left = inList.ReadU32(); left > 0; --left)
    {
        const UInt64 duration = inList.ReadWide(isWide);
        const SInt64 time = SignedTime(inList.ReadWide(isWide), isWide);
        inList.Skip(4);  // rate
        if (!inList.IsOK())
            return;
        if (time < 0)
            continue;  // a pause in front of the audio
        if (outEdits.mCount == 0)
            outEdits.mMediaTime = time;
        if (__builtin_add_overflow(outEdits.mDuration, duration, &outEdits.mDuration))
            outEdits.mDuration = 0;
        ++outEdits.mCount;
    }
}

struct TableRow
{
    UInt32 mType;
    ByteRange SampleTables::*mTable;
};

constexpr TableRow kTables[] = {
    {Code('s', 't', 's', 'd'), &SampleTables::mDescriptions},
    {Code('s', 't', 't', 's'), &SampleTables::mTimes},
    {Code('s', 't', 's', 'z'), &SampleTables::mSizes},
    {Code('s', 't', 'z', '2'), &SampleTables::mCompactSizes},
    {Code('s', 't', 's', 'c'), &SampleTables::mChunkRuns},
    {Code('s', 't', 'c', 'o'), &SampleTables::mOffsets32},
    {Code('c', 'o', '6', '4'), &SampleTables::mOffsets64},
};

void ReadSampleTables(BoxCursor inBoxes, SampleTables& outTables)
{
    Box box;
    while (inBoxes.NextBox(box))
        for (const TableRow& row : kTables)
            if (row.mType == box.mType && (outTables.*row.mTable).IsEmpty())
                outTables.*row.mTable = box.mBody;
}

void ReadMediaInformation(ByteWindow& ioWindow, BoxCursor inBoxes, Track& ioTrack)
{
    Box box;
    while (inBoxes.NextBox(box))
    {
        const BoxCursor body(ioWindow, box.mBody);
        if (box.mType == Code('s', 't', 'b', 'l'))
            ReadSampleTables(body, ioTrack.mTables);
        else if (box.mType == Code('d', 'i', 'n', 'f'))
            (void)FindBox(body, Code('d', 'r', 'e', 'f'), ioTrack.mDataReferences);
    }
}

bool IsSoundHandler(BoxCursor inHandler)
{
    inHandler.Skip(4 + 4);  // version and flags, component type
    return inHandler.ReadU32() == Code('s', 'o', 'u', 'n');
}

void ReadMedia(ByteWindow& ioWindow, BoxCursor inBoxes, Track& ioTrack)
{
    Box box;
    while (inBoxes.NextBox(box))
    {
        const BoxCursor body(ioWindow, box.mBody);
        if (box.mType == Code('m', 'd', 'h', 'd'))
            ioTrack.mTimescale = ReadTimescale(body);
        else if (box.mType == Code('h', 'd', 'l', 'r'))
            ioTrack.mIsAudio = IsSoundHandler(body);
        else if (box.mType == Code('m', 'i', 'n', 'f'))
            ReadMediaInformation(ioWindow, body, ioTrack);
    }
}

Track ReadTrack(ByteWindow& ioWindow, BoxCursor inBoxes)
{
    Track track;
    Box box;
    while (inBoxes.NextBox(box))
    {
        const BoxCursor body(ioWindow, box.mBody);
        ByteRange list;
        if (box.mType == Code('t', 'k', 'h', 'd'))
            ReadTrackHeader(body, track);
        else if (box.mType == Code('m', 'd', 'i', 'a'))
            ReadMedia(ioWindow, body, track);
        else if (box.mType == Code('e', 'd', 't', 's') &&
                 FindBox(body, Code('e', 'l', 's', 't'), list))
            ReadEdits(BoxCursor(ioWindow, list), track.mEdits);
    }
    return track;
}

void ReadFragmentDefaults(ByteWindow& ioWindow, BoxCursor inBoxes, Movie& ioMovie)
{
    ioMovie.mHasFragments = true;
    Box box;
    while (inBoxes.NextBox(box) && ioMovie.mFragmentDefaults.size() < kMaxTracks)
    {
        if (box.mType != Code('t', 'r', 'e', 'x'))
            continue;
        BoxCursor body(ioWindow, box.mBody);
        body.Skip(4);
        FragmentDefaults defaults;
        defaults.mTrackID = body.ReadU32();
        defaults.mDescription = body.ReadU32();
        defaults.mDuration = body.ReadU32();
        defaults.mSize = body.ReadU32();
        if (body.IsOK())
            ioMovie.mFragmentDefaults.push_back(defaults);
    }
}

bool IsGaplessItem(ByteWindow& ioWindow, ByteRange inItem)
{
    constexpr char kName[] = "iTunSMPB";
    ByteRange body;
    if (!FindBox(BoxCursor(ioWindow, inItem), Code('n', 'a', 'm', 'e'), body))
        return false;
    const std::vector<UInt8> bytes = ReadBody(ioWindow, body, 32);
    constexpr std::size_t kHead = 4;  // version and flags
    return bytes.size() == kHead + sizeof(kName) - 1 &&
           std::equal(bytes.begin() + kHead, bytes.end(), kName);
}

void ReadItems(ByteWindow& ioWindow, BoxCursor inItems, Movie& ioMovie)
{
    constexpr std::size_t kHead = 8;  // type and locale
    Box box;
    while (inItems.NextBox(box))
    {
        ByteRange body;
        if (box.mType != Code('-', '-', '-', '-') || !IsGaplessItem(ioWindow, box.mBody) ||
            !FindBox(BoxCursor(ioWindow, box.mBody), Code('d', 'a', 't', 'a'), body))
            continue;
        const std::vector<UInt8> text = ReadBody(ioWindow, body, 256);
        if (text.size() > kHead)
            ioMovie.mGapless = ParseGaplessText(std::span<const UInt8>(text).subspan(kHead));
    }
}

void ReadUserData(ByteWindow& ioWindow, BoxCursor inBoxes, Movie& ioMovie)
{
    ByteRange meta;
    ByteRange items;
    if (!FindBox(inBoxes, Code('m', 'e', 't', 'a'), meta))
        return;
    // A box of version and flags here, of plain children in QuickTime files.
    BoxCursor children(ioWindow, meta);
    if (BoxCursor(children).ReadU32() == 0)
        children.Skip(4);
    if (FindBox(children, Code('i', 'l', 's', 't'), items))
        ReadItems(ioWindow, BoxCursor(ioWindow, items), ioMovie);
}

void ReadHead(ByteWindow& ioWindow, BoxCursor inBoxes, Movie& ioMovie)
{
    Box box;
    while (inBoxes.NextBox(box))
    {
        const BoxCursor body(ioWindow, box.mBody);
        if (box.mType == Code('m', 'v', 'h', 'd'))
            ioMovie.mTimescale = ReadTimescale(body);
        else if (box.mType == Code('t', 'r', 'a', 'k') && ioMovie.mTracks.size() < kMaxTracks)
            ioMovie.mTracks.push_back(ReadTrack(ioWindow, body));
        else if (box.mType == Code('m', 'v', 'e', 'x'))
            ReadFragmentDefaults(ioWindow, body, ioMovie);
        else if (box.mType == Code('u', 'd', 't', 'a'))
            ReadUserData(ioWindow, body, ioMovie);
    }
}

int DigitValue(UInt8 inCharacter)
{
    if (inCharacter >= '0' && inCharacter <= '9')
        return inCharacter - '0';
    const int letter = inCharacter | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// Takes blanks and one word of up to 16 digits off the front.
std::optional<UInt64> TakeWord(std::span<const UInt8>& ioText)
{
    while (!ioText.empty() && ioText[0] == ' ')
        ioText = ioText.subspan(1);
    UInt64 value = 0;
    std::size_t digits = 0;
    for (; digits < ioText.size() && DigitValue(ioText[digits]) >= 0; ++digits)
        value = (value << 4) | static_cast<UInt64>(DigitValue(ioText[digits]));
    ioText = ioText.subspan(digits);
    return digits >= 1 && digits <= 16 ? std::optional<UInt64>(value) : std::nullopt;
}

}  // namespace

std::optional<GaplessText> ParseGaplessText(std::span<const UInt8> inText)
{
    UInt64 words[4] = {};
    for (UInt64& word : words)
    {
        const std::optional<UInt64> taken = TakeWord(inText);
        if (!taken)
            return std::nullopt;
        word = *taken;
    }
    constexpr UInt64 kMost = 0x7FFFFFFF;
    if (words[1] > kMost || words[2] > kMost || words[3] == 0 || words[3] > kMost << 16)
        return std::nullopt;
    return GaplessText{static_cast<UInt32>(words[1]), static_cast<UInt32>(words[2]), words[3]};
}

OSStatus ReadMovie(ByteWindow& ioWindow, Movie& outMovie)
{
    const OSStatus damaged = kAudioFileInvalidFileError;
    BoxCursor boxes(ioWindow, {0, ioWindow.FileSize()});
    Box box;
    for (bool isFirst = true; boxes.NextBox(box); isFirst = false)
    {
        if (isFirst && box.mType != Code('f', 't', 'y', 'p'))
            return kAudioFileUnsupportedFileTypeError;
        if (box.mType != Code('m', 'o', 'o', 'v'))
            continue;
        ReadHead(ioWindow, BoxCursor(ioWindow, box.mBody), outMovie);
        outMovie.mEnd = box.mBody.mEnd;
        return ioWindow.Status();
    }
    if (ioWindow.Status() != noErr)
        return ioWindow.Status();
    return boxes.Position() == 0 ? kAudioFileUnsupportedFileTypeError : damaged;
}

}  // namespace audiotoolbox::mpeg4
