// CoreAudioTypes: the records in which the platform speaks of audio, and their constants.
//
// Layouts, names and values follow the platform's public documentation. A four-character code is an
// unsigned 32-bit number whose most significant byte is the first character.
#ifndef COREAUDIO_COREAUDIOTYPES_H
#define COREAUDIO_COREAUDIOTYPES_H

#include <CoreFoundation/CoreFoundation.h>

#define CA_FOUR_CHAR_CODE(a, b, c, d)                                                      \
    (((UInt32)(UInt8)(a) << 24) | ((UInt32)(UInt8)(b) << 16) | ((UInt32)(UInt8)(c) << 8) | \
     (UInt32)(UInt8)(d))

#ifdef __cplusplus
extern "C" {
#endif

typedef UInt32 AudioFormatID;
typedef UInt32 AudioFormatFlags;
typedef UInt32 AudioChannelLabel;
typedef UInt32 AudioChannelLayoutTag;
typedef UInt32 AudioChannelBitmap;
typedef UInt32 AudioChannelFlags;

enum
{
    noErr = 0
};

/// One stream format, 40 bytes. A field of 0 is unknown or does not apply.
typedef struct AudioStreamBasicDescription
{
    Float64 mSampleRate;  // frames per second
    AudioFormatID mFormatID;
    AudioFormatFlags mFormatFlags;
    UInt32 mBytesPerPacket;   // 0: packets of varying size
    UInt32 mFramesPerPacket;  // 0: packets of varying length
    UInt32 mBytesPerFrame;    // 0: compressed
    UInt32 mChannelsPerFrame;
    UInt32 mBitsPerChannel;  // 0: compressed
    UInt32 mReserved;
} AudioStreamBasicDescription;

/// Where one packet lies in a buffer of packets.
typedef struct AudioStreamPacketDescription
{
    SInt64 mStartOffset;             // bytes
    UInt32 mVariableFramesInPacket;  // 0: the format's constant
    UInt32 mDataByteSize;
} AudioStreamPacketDescription;

typedef struct AudioBuffer
{
    UInt32 mNumberChannels;  // interleaved in this buffer
    UInt32 mDataByteSize;
    void* mData;
} AudioBuffer;

typedef struct AudioBufferList
{
    UInt32 mNumberBuffers;
    AudioBuffer mBuffers[1];  // mNumberBuffers of them
} AudioBufferList;

typedef struct AudioValueRange
{
    Float64 mMinimum;
    Float64 mMaximum;
} AudioValueRange;

typedef struct AudioChannelDescription
{
    AudioChannelLabel mChannelLabel;
    AudioChannelFlags mChannelFlags;
    Float32 mCoordinates[3];
} AudioChannelDescription;

/// 12 bytes and 20 for each description.
typedef struct AudioChannelLayout
{
    AudioChannelLayoutTag mChannelLayoutTag;
    AudioChannelBitmap mChannelBitmap;
    UInt32 mNumberChannelDescriptions;
    AudioChannelDescription mChannelDescriptions[1];  // mNumberChannelDescriptions of them
} AudioChannelLayout;

// clang-format off
#define kAudioFormatLinearPCM          CA_FOUR_CHAR_CODE('l', 'p', 'c', 'm')
#define kAudioFormatAC3                CA_FOUR_CHAR_CODE('a', 'c', '-', '3')
#define kAudioFormat60958AC3           CA_FOUR_CHAR_CODE('c', 'a', 'c', '3')
#define kAudioFormatEnhancedAC3        CA_FOUR_CHAR_CODE('e', 'c', '-', '3')
#define kAudioFormatAppleIMA4          CA_FOUR_CHAR_CODE('i', 'm', 'a', '4')
#define kAudioFormatMPEG4AAC           CA_FOUR_CHAR_CODE('a', 'a', 'c', ' ')
#define kAudioFormatMPEG4AAC_HE        CA_FOUR_CHAR_CODE('a', 'a', 'c', 'h')
#define kAudioFormatMPEG4AAC_HE_V2     CA_FOUR_CHAR_CODE('a', 'a', 'c', 'p')
#define kAudioFormatULaw               CA_FOUR_CHAR_CODE('u', 'l', 'a', 'w')
#define kAudioFormatALaw               CA_FOUR_CHAR_CODE('a', 'l', 'a', 'w')
#define kAudioFormatMACE3              CA_FOUR_CHAR_CODE('M', 'A', 'C', '3')
#define kAudioFormatMACE6              CA_FOUR_CHAR_CODE('M', 'A', 'C', '6')
#define kAudioFormatQDesign            CA_FOUR_CHAR_CODE('Q', 'D', 'M', 'C')
#define kAudioFormatQDesign2           CA_FOUR_CHAR_CODE('Q', 'D', 'M', '2')
#define kAudioFormatMPEGLayer1         CA_FOUR_CHAR_CODE('.', 'm', 'p', '1')
#define kAudioFormatMPEGLayer2         CA_FOUR_CHAR_CODE('.', 'm', 'p', '2')
#define kAudioFormatMPEGLayer3         CA_FOUR_CHAR_CODE('.', 'm', 'p', '3')
#define kAudioFormatAppleLossless      CA_FOUR_CHAR_CODE('a', 'l', 'a', 'c')
#define kAudioFormatFLAC               CA_FOUR_CHAR_CODE('f', 'l', 'a', 'c')
#define kAudioFormatOpus               CA_FOUR_CHAR_CODE('o', 'p', 'u', 's')
#define kAudioFormatAMR                CA_FOUR_CHAR_CODE('s', 'a', 'm', 'r')
#define kAudioFormatAMR_WB             CA_FOUR_CHAR_CODE('s', 'a', 'w', 'b')
#define kAudioFormatiLBC               CA_FOUR_CHAR_CODE('i', 'l', 'b', 'c')
// 'ms' and the WAVE format tag: 2 MS ADPCM, 0x11 IMA ADPCM, 0x31 GSM 6.10.
#define kAudioFormatMicrosoftADPCM     ((UInt32)0x6D730002)
#define kAudioFormatDVIIntelIMA        ((UInt32)0x6D730011)
#define kAudioFormatMicrosoftGSM       ((UInt32)0x6D730031)

#define kAudioFormatFlagIsFloat                  ((UInt32)0x1)
#define kAudioFormatFlagIsBigEndian              ((UInt32)0x2)
#define kAudioFormatFlagIsSignedInteger          ((UInt32)0x4)
#define kAudioFormatFlagIsPacked                 ((UInt32)0x8)
#define kAudioFormatFlagIsAlignedHigh            ((UInt32)0x10)
#define kAudioFormatFlagIsNonInterleaved         ((UInt32)0x20)
#define kAudioFormatFlagIsNonMixable             ((UInt32)0x40)
#define kAudioFormatFlagsAreAllClear             ((UInt32)0x80000000)
#define kLinearPCMFormatFlagsSampleFractionShift 7
#define kLinearPCMFormatFlagsSampleFractionMask  ((UInt32)(0x3F << 7))
#define kAudioFormatFlagsNativeEndian            ((UInt32)0)

// The source depth of a lossless format, in its flags.
#define kAppleLosslessFormatFlag_16BitSourceData ((UInt32)1)
#define kAppleLosslessFormatFlag_20BitSourceData ((UInt32)2)
#define kAppleLosslessFormatFlag_24BitSourceData ((UInt32)3)
#define kAppleLosslessFormatFlag_32BitSourceData ((UInt32)4)

#define kAudioChannelLabel_Unknown               ((UInt32)0xFFFFFFFF)
#define kAudioChannelLabel_Unused                ((UInt32)0)
#define kAudioChannelLabel_Left                  ((UInt32)1)
#define kAudioChannelLabel_Right                 ((UInt32)2)
#define kAudioChannelLabel_Center                ((UInt32)3)
#define kAudioChannelLabel_LFEScreen             ((UInt32)4)
#define kAudioChannelLabel_LeftSurround          ((UInt32)5)
#define kAudioChannelLabel_RightSurround         ((UInt32)6)
#define kAudioChannelLabel_LeftCenter            ((UInt32)7)
#define kAudioChannelLabel_RightCenter           ((UInt32)8)
#define kAudioChannelLabel_CenterSurround        ((UInt32)9)
#define kAudioChannelLabel_LeftSurroundDirect    ((UInt32)10)
#define kAudioChannelLabel_RightSurroundDirect   ((UInt32)11)
#define kAudioChannelLabel_TopCenterSurround     ((UInt32)12)
#define kAudioChannelLabel_VerticalHeightLeft    ((UInt32)13)
#define kAudioChannelLabel_VerticalHeightCenter  ((UInt32)14)
#define kAudioChannelLabel_VerticalHeightRight   ((UInt32)15)
#define kAudioChannelLabel_TopBackLeft           ((UInt32)16)
#define kAudioChannelLabel_TopBackCenter         ((UInt32)17)
#define kAudioChannelLabel_TopBackRight          ((UInt32)18)
#define kAudioChannelLabel_RearSurroundLeft      ((UInt32)33)
#define kAudioChannelLabel_RearSurroundRight     ((UInt32)34)
#define kAudioChannelLabel_LeftWide              ((UInt32)35)
#define kAudioChannelLabel_RightWide             ((UInt32)36)
#define kAudioChannelLabel_LFE2                  ((UInt32)37)
#define kAudioChannelLabel_LeftTotal             ((UInt32)38)
#define kAudioChannelLabel_RightTotal            ((UInt32)39)
#define kAudioChannelLabel_HearingImpaired       ((UInt32)40)
#define kAudioChannelLabel_Narration             ((UInt32)41)
#define kAudioChannelLabel_Mono                  ((UInt32)42)
#define kAudioChannelLabel_Ambisonic_W           ((UInt32)200)
#define kAudioChannelLabel_Ambisonic_X           ((UInt32)201)
#define kAudioChannelLabel_Ambisonic_Y           ((UInt32)202)
#define kAudioChannelLabel_Ambisonic_Z           ((UInt32)203)
#define kAudioChannelLabel_HeadphonesLeft        ((UInt32)301)
#define kAudioChannelLabel_HeadphonesRight       ((UInt32)302)
#define kAudioChannelLabel_Discrete              ((UInt32)400)

// The low 16 bits of a tag are its channel count.
#define kAudioChannelLayoutTag_UseChannelDescriptions ((UInt32)0)
#define kAudioChannelLayoutTag_UseChannelBitmap  ((UInt32)0x10000)
#define kAudioChannelLayoutTag_Mono              ((UInt32)0x640001)
#define kAudioChannelLayoutTag_Stereo            ((UInt32)0x650002)
#define kAudioChannelLayoutTag_StereoHeadphones  ((UInt32)0x660002)
#define kAudioChannelLayoutTag_MatrixStereo      ((UInt32)0x670002)
#define kAudioChannelLayoutTag_MidSide           ((UInt32)0x680002)
#define kAudioChannelLayoutTag_XY                ((UInt32)0x690002)
#define kAudioChannelLayoutTag_Binaural          ((UInt32)0x6A0002)
#define kAudioChannelLayoutTag_Ambisonic_B_Format ((UInt32)0x6B0004)
#define kAudioChannelLayoutTag_Quadraphonic      ((UInt32)0x6C0004)
#define kAudioChannelLayoutTag_Pentagonal        ((UInt32)0x6D0005)
#define kAudioChannelLayoutTag_Hexagonal         ((UInt32)0x6E0006)
#define kAudioChannelLayoutTag_Octagonal         ((UInt32)0x6F0008)
#define kAudioChannelLayoutTag_Cube              ((UInt32)0x700008)
#define kAudioChannelLayoutTag_MPEG_3_0_A        ((UInt32)0x710003)
#define kAudioChannelLayoutTag_MPEG_3_0_B        ((UInt32)0x720003)
#define kAudioChannelLayoutTag_MPEG_4_0_A        ((UInt32)0x730004)
#define kAudioChannelLayoutTag_MPEG_4_0_B        ((UInt32)0x740004)
#define kAudioChannelLayoutTag_MPEG_5_0_A        ((UInt32)0x750005)
#define kAudioChannelLayoutTag_MPEG_5_0_B        ((UInt32)0x760005)
#define kAudioChannelLayoutTag_MPEG_5_0_C        ((UInt32)0x770005)
#define kAudioChannelLayoutTag_MPEG_5_0_D        ((UInt32)0x780005)
#define kAudioChannelLayoutTag_MPEG_5_1_A        ((UInt32)0x790006)
#define kAudioChannelLayoutTag_MPEG_5_1_B        ((UInt32)0x7A0006)
#define kAudioChannelLayoutTag_MPEG_5_1_C        ((UInt32)0x7B0006)
#define kAudioChannelLayoutTag_MPEG_5_1_D        ((UInt32)0x7C0006)
#define kAudioChannelLayoutTag_MPEG_6_1_A        ((UInt32)0x7D0007)
#define kAudioChannelLayoutTag_MPEG_7_1_A        ((UInt32)0x7E0008)
#define kAudioChannelLayoutTag_MPEG_7_1_B        ((UInt32)0x7F0008)
#define kAudioChannelLayoutTag_MPEG_7_1_C        ((UInt32)0x800008)
#define kAudioChannelLayoutTag_Emagic_Default_7_1 ((UInt32)0x810008)
#define kAudioChannelLayoutTag_SMPTE_DTV         ((UInt32)0x820008)
#define kAudioChannelLayoutTag_ITU_2_1           ((UInt32)0x830003)
#define kAudioChannelLayoutTag_ITU_2_2           ((UInt32)0x840004)
#define kAudioChannelLayoutTag_DVD_4             ((UInt32)0x850003)
#define kAudioChannelLayoutTag_DVD_5             ((UInt32)0x860004)
#define kAudioChannelLayoutTag_DVD_6             ((UInt32)0x870005)
#define kAudioChannelLayoutTag_DVD_10            ((UInt32)0x880004)
#define kAudioChannelLayoutTag_DVD_11            ((UInt32)0x890005)
#define kAudioChannelLayoutTag_DVD_18            ((UInt32)0x8A0005)
#define kAudioChannelLayoutTag_AudioUnit_6_0     ((UInt32)0x8B0006)
#define kAudioChannelLayoutTag_AudioUnit_7_0     ((UInt32)0x8C0007)
#define kAudioChannelLayoutTag_AAC_6_0           ((UInt32)0x8D0006)
#define kAudioChannelLayoutTag_AAC_6_1           ((UInt32)0x8E0007)
#define kAudioChannelLayoutTag_AAC_7_0           ((UInt32)0x8F0007)
#define kAudioChannelLayoutTag_AAC_Octagonal     ((UInt32)0x900008)
#define kAudioChannelLayoutTag_TMH_10_2_std      ((UInt32)0x910010)
#define kAudioChannelLayoutTag_TMH_10_2_full     ((UInt32)0x920015)
#define kAudioChannelLayoutTag_DiscreteInOrder   ((UInt32)0x930000)
#define kAudioChannelLayoutTag_AudioUnit_7_0_Front ((UInt32)0x940007)
#define kAudioChannelLayoutTag_AC3_1_0_1         ((UInt32)0x950002)
#define kAudioChannelLayoutTag_AC3_3_0           ((UInt32)0x960003)
#define kAudioChannelLayoutTag_AC3_3_1           ((UInt32)0x970004)
#define kAudioChannelLayoutTag_AC3_3_0_1         ((UInt32)0x980004)
#define kAudioChannelLayoutTag_AC3_2_1_1         ((UInt32)0x990004)
#define kAudioChannelLayoutTag_AC3_3_1_1         ((UInt32)0x9A0005)
#define kAudioChannelLayoutTag_EAC_6_0_A         ((UInt32)0x9B0006)
#define kAudioChannelLayoutTag_Unknown           ((UInt32)0xFFFF0000)
// clang-format on

#ifdef __cplusplus
}
#endif

#endif
