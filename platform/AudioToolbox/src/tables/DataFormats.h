// DataFormats: one row per data format, with what is fixed about it and how it is decoded.
//
// The catalogue's questions, the converter and the lists of formats read the same rows. Nothing
// here loads a codec.
#ifndef AUDIOTOOLBOX_TABLES_DATAFORMATS_H
#define AUDIOTOOLBOX_TABLES_DATAFORMATS_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox
{

enum class DecoderRoad : UInt8
{
    None,    // named only
    Sample,  // one sample from one word, by our own kernels
    Codec    // through the codec module
};

/// What a decoder of the format takes as its cookie.
enum class CookieForm : UInt8
{
    None,
    AAC,       // an AudioSpecificConfig, or an ES descriptor around one
    Lossless,  // 'alac': 24 bytes, bare, behind an atom head, or behind 'frma'
    FLAC,      // STREAMINFO
    Opus,      // OpusHead
    Wave       // what stands behind the WAVE format record; any bytes
};

struct DataFormat
{
    AudioFormatID mFormatID;
    const char* mName;        // UTF-8
    UInt32 mFramesPerPacket;  // 0: by the stream
    UInt32 mMaximumChannels;  // that the decoder takes
    DecoderRoad mDecoder;
    CookieForm mCookie;
};

/// Sorted as the lists of formats tell them: linear PCM first.
std::span<const DataFormat> AllDataFormats();

/// Null for a format that no row names.
const DataFormat* FindDataFormat(AudioFormatID inFormat);

}  // namespace audiotoolbox

#endif
