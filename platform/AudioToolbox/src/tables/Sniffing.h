// Sniffing: does a file begin as files of this type do? Every question takes what there is of the
// first bytes and never fails for too few of them.
#ifndef AUDIOTOOLBOX_TABLES_SNIFFING_H
#define AUDIOTOOLBOX_TABLES_SNIFFING_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox
{

using FileHead = std::span<const UInt8>;

bool LooksLikeWAVE(FileHead inHead);
bool LooksLikeRF64(FileHead inHead);
bool LooksLikeBW64(FileHead inHead);
bool LooksLikeWave64(FileHead inHead);
bool LooksLikeAIFF(FileHead inHead);
bool LooksLikeAIFC(FileHead inHead);
bool LooksLikeCAF(FileHead inHead);
bool LooksLikeAU(FileHead inHead);
bool LooksLikeM4A(FileHead inHead);
bool LooksLikeM4B(FileHead inHead);
bool LooksLike3GP(FileHead inHead);
bool LooksLike3GP2(FileHead inHead);
/// Any box container that begins with its brands, whichever they are.
bool LooksLikeMPEG4(FileHead inHead);
bool LooksLikeFLAC(FileHead inHead);
bool LooksLikeAMR(FileHead inHead);
bool LooksLikeAC3(FileHead inHead);
bool LooksLikeEAC3(FileHead inHead);
bool LooksLikeADTS(FileHead inHead);
bool LooksLikeLOAS(FileHead inHead);
bool LooksLikeMPEGLayer1(FileHead inHead);
bool LooksLikeMPEGLayer2(FileHead inHead);
bool LooksLikeMPEGLayer3(FileHead inHead);

}  // namespace audiotoolbox

#endif
