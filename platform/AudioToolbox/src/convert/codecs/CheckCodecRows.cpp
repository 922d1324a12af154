// CheckCodecRows: whether the FFmpeg that was found has every codec that the rows name.
//
// Runs while the module is built. Ends with 1 after a line on standard error for each that is
// missing, and with 0 and nothing said otherwise.
#include "convert/codecs/DecoderRows.h"
#include "convert/codecs/FFmpeg.h"
#include "tables/Encoders.h"

#include <cstdio>
#include <set>
#include <string>

namespace
{

using audiotoolbox::AllEncoders;
using audiotoolbox::EncoderRoad;
using audiotoolbox::EncoderRow;
using audiotoolbox::codecs::DecoderRow;
using audiotoolbox::codecs::kDecoders;

std::set<std::string> MissingCodecs()
{
    std::set<std::string> missing;
    for (const DecoderRow& row : kDecoders)
        if (avcodec_find_decoder_by_name(row.mDecoder) == nullptr)
            missing.insert(std::string("decoder ") + row.mDecoder);
    for (const EncoderRow& row : AllEncoders())
        if (row.mRoad == EncoderRoad::Codec && avcodec_find_encoder_by_name(row.mCodec) == nullptr)
            missing.insert(std::string("encoder ") + row.mCodec);
    return missing;
}

}  // namespace

int main()
{
    const std::set<std::string> missing = MissingCodecs();
    const unsigned int version = avcodec_version();
    for (const std::string& codec : missing)
        (void)std::fprintf(stderr, "The FFmpeg that was found has no %s (libavcodec %u.%u.%u)\n",
                           codec.c_str(), AV_VERSION_MAJOR(version), AV_VERSION_MINOR(version),
                           AV_VERSION_MICRO(version));
    return missing.empty() ? 0 : 1;
}
