// The settings dialog on the host's behalf: from the stored text into the dialog and back.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/TarvoAT/private/ExportAudio.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialog.h"

#include <AudioToolbox/AudioToolbox.h>

namespace tarvo
{
namespace
{

// The dialog of the AAC filter cannot leave its file type, whatever was stored.
void FixFileType(UInt32 inFileType, TarvoATPrivateSettings& ioSettings,
                 TarvoATSettingsDialog& ioDialog)
{
    if (inFileType != kAudioFileAAC_ADTSType)
        return;
    ioSettings.SetAudioFileTypeID(kAudioFileAAC_ADTSType);
    ioSettings.SetFormatID(kAudioFormatMPEG4AAC);
    ioDialog.mFixedFileType = inFileType;
}

}  // namespace

std::int32_t TarvoATInterface::RunExportSettingsDialog(TarvoFormatInterface& inFormat,
                                                       void* inParentWindow, long long,
                                                       bool& outCancelled)
{
    TarvoATPrivateSettings settings;
    (void)settings.InitializeFromSerialized(inFormat.GetPrivateSettings());  // as far as it goes
    const double rate = inFormat.GetSampleRate();
    const UInt32 channels = ChannelCountOf(inFormat);
    const UInt32 bits = BitsPerChannelOfSampleType(inFormat.GetSampleType());
    TarvoATSettingsDialog dialog(settings, rate, channels, bits);
    FixFileType(QueryFilterFileType(inFormat), settings, dialog);

    outCancelled = true;
    if (dialog.RunModal(inParentWindow))
    {
        inFormat.SetPrivateSettings(settings.GetSerialized().c_str());
        outCancelled = false;
    }
    return kTarvoResultSuccess;
}

}  // namespace tarvo
