#include "tables/DataFormats.h"

namespace audiotoolbox
{

namespace
{

// clang-format off
constexpr DataFormat kDataFormats[] = {
    // code                       name                                    frames chan. decoder              cookie
    {kAudioFormatLinearPCM,       "Linear PCM",                                1, 64, DecoderRoad::Sample, CookieForm::None},
    {kAudioFormatAC3,             "AC-3",                                   1536,  8, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatEnhancedAC3,     "Enhanced AC-3",                             0, 16, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatAppleIMA4,       "IMA 4:1 ADPCM",                            64,  2, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatMPEG4AAC,        "MPEG-4 AAC",                             1024, 48, DecoderRoad::Codec,  CookieForm::AAC},
    {kAudioFormatMPEG4AAC_HE,     "MPEG-4 High Efficiency AAC",             2048, 48, DecoderRoad::Codec,  CookieForm::AAC},
    {kAudioFormatMPEG4AAC_HE_V2,  "MPEG-4 High Efficiency AAC Version 2",   2048,  2, DecoderRoad::Codec,  CookieForm::AAC},
    {kAudioFormatULaw,            "\xC2\xB5-Law 2:1",                          1, 64, DecoderRoad::Sample, CookieForm::None},
    {kAudioFormatALaw,            "A-Law 2:1",                                 1, 64, DecoderRoad::Sample, CookieForm::None},
    {kAudioFormatMPEGLayer1,      "MPEG Layer 1",                            384,  2, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatMPEGLayer2,      "MPEG Layer 2",                           1152,  2, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatMPEGLayer3,      "MPEG Layer 3",                              0,  2, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatAppleLossless,   "Apple Lossless",                         4096,  8, DecoderRoad::Codec,  CookieForm::Lossless},
    {kAudioFormatFLAC,            "FLAC",                                      0,  8, DecoderRoad::Codec,  CookieForm::FLAC},
    {kAudioFormatOpus,            "Opus",                                    960,  8, DecoderRoad::Codec,  CookieForm::Opus},
    {kAudioFormatAMR,             "AMR Narrow Band",                         160,  1, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatAMR_WB,          "AMR Wide Band",                           320,  1, DecoderRoad::Codec,  CookieForm::None},
    {kAudioFormatMicrosoftADPCM,  "Microsoft ADPCM",                           0,  2, DecoderRoad::Codec,  CookieForm::Wave},
    {kAudioFormatDVIIntelIMA,     "DVI/Intel IMA ADPCM",                       0,  2, DecoderRoad::Codec,  CookieForm::Wave},
    {kAudioFormatMicrosoftGSM,    "Microsoft GSM 6.10",                      320,  1, DecoderRoad::Codec,  CookieForm::Wave},
    {kAudioFormat60958AC3,        "AC-3 in IEC 60958",                         0,  0, DecoderRoad::None,   CookieForm::None},
    {kAudioFormatiLBC,            "iLBC",                                      0,  0, DecoderRoad::None,   CookieForm::None},
    {kAudioFormatMACE3,           "MACE 3:1",                                  6,  0, DecoderRoad::None,   CookieForm::None},
    {kAudioFormatMACE6,           "MACE 6:1",                                  6,  0, DecoderRoad::None,   CookieForm::None},
    {kAudioFormatQDesign,         "QDesign Music",                             0,  0, DecoderRoad::None,   CookieForm::None},
    {kAudioFormatQDesign2,        "QDesign Music 2",                           0,  0, DecoderRoad::None,   CookieForm::None},
};
// clang-format on

}  // namespace

std::span<const DataFormat> AllDataFormats()
{
    return kDataFormats;
}

const DataFormat* FindDataFormat(AudioFormatID inFormat)
{
    for (const DataFormat& row : kDataFormats)
        if (row.mFormatID == inFormat)
            return &row;
    return nullptr;
}

}  // namespace audiotoolbox
