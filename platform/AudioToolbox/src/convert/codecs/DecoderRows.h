// DecoderRows: which decoder serves which format. These decoders and no others are ever opened.
#ifndef AUDIOTOOLBOX_CONVERT_CODECS_DECODERROWS_H
#define AUDIOTOOLBOX_CONVERT_CODECS_DECODERROWS_H

#include <CoreAudio/CoreAudioTypes.h>

namespace audiotoolbox::codecs
{

struct DecoderRow
{
    AudioFormatID mFormatID;
    const char* mDecoder;
    int mCodedBits = 0;  // per sample, where the decoder wants to be told
};

constexpr DecoderRow kDecoders[] = {
    {kAudioFormatAC3, "ac3"},
    {kAudioFormatEnhancedAC3, "eac3"},
    {kAudioFormatAppleIMA4, "adpcm_ima_qt"},
    {kAudioFormatMPEG4AAC, "aac"},
    {kAudioFormatMPEG4AAC_HE, "aac"},
    {kAudioFormatMPEG4AAC_HE_V2, "aac"},
    {kAudioFormatMPEGLayer1, "mp1float"},
    {kAudioFormatMPEGLayer2, "mp2float"},
    {kAudioFormatMPEGLayer3, "mp3float"},
    {kAudioFormatAppleLossless, "alac"},
    {kAudioFormatFLAC, "flac"},
    {kAudioFormatOpus, "opus"},
    {kAudioFormatAMR, "amrnb"},
    {kAudioFormatAMR_WB, "amrwb"},
    {kAudioFormatMicrosoftADPCM, "adpcm_ms", 4},
    {kAudioFormatDVIIntelIMA, "adpcm_ima_wav", 4},
    {kAudioFormatMicrosoftGSM, "gsm_ms"},
};

/// Null for a format without a row.
inline const DecoderRow* FindDecoder(AudioFormatID inFormat)
{
    for (const DecoderRow& row : kDecoders)
        if (row.mFormatID == inFormat)
            return &row;
    return nullptr;
}

}  // namespace audiotoolbox::codecs

#endif
