// TarvoATInterface: the plug-in's answer to each selector.
//
// An instance lives for one entry call and keeps nothing. What outlives a call is the reader or the
// writer that the host holds as a handle. Exceptions pass through to the host.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATINTERFACE_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_TARVOATINTERFACE_H

#include "TarvoSDK/TarvoInterfaceTemplate.h"
#include "appleaudiotoolbox/ATReader.h"

namespace appleaudiotoolbox
{
class ATWriter;
}

namespace tarvo
{

class TarvoATInterface
    : public TarvoInterfaceTemplate<appleaudiotoolbox::ATReader, appleaudiotoolbox::ATWriter>
{
public:
    using ATReader = appleaudiotoolbox::ATReader;
    using ATWriter = appleaudiotoolbox::ATWriter;

    /// Starts the module and tells identity and filters. The first call builds the catalogue of
    /// what the platform reads and writes, which takes longest of all calls. Always succeeds.
    std::int32_t GetTarvoInfo(TarvoGetTarvoInfoInterface& inInfo) override;
    /// Registers the diagnostics with the host's test framework, once however often it is called.
    std::int32_t Initialize() override;

    /// Success: the host has description, bit rate and handle, in this order, and an open status
    /// of 0. Failure: only the error text was told.
    std::int32_t OpenForRead(TarvoOpenInterface& inOpen) override;
    /// Leaves the reader as it is. A sample width above 4 bytes fails without a text, with channel
    /// count and rate told.
    std::int32_t GetFormat(ATReader& inReader, TarvoFormatInterface& inFormat) override;
    /// The host's buffers go straight to the reader. After a failure 0 frames are told, and the
    /// session goes on.
    std::int32_t ReadSamples(ATReader& inReader, TarvoReadSamplesInterface& inRequest) override;

    std::int32_t GetDefaultExportSettings(TarvoFormatInterface& inFormat) override;
    std::int32_t GetExportSettingsInfo(TarvoGetExportSettingsInfoInterface& inInfo) override;
    /// Blocks while the dialog is open. OK: the format has the new settings text, the one thing of
    /// it that changes. The option is not used.
    std::int32_t RunExportSettingsDialog(TarvoFormatInterface& inFormat, void* inParentWindow,
                                         long long inOption, bool& outCancelled) override;

    /// Success: the host has the description, and outWriter is a writer that belongs to it.
    /// Failure: the error text was told, and outWriter is null; a file that was created stays. A
    /// sample type without a width is refused without a text, before any file is made.
    std::int32_t WriteStart(TarvoWriteStartInterface& inStart, ATWriter*& outWriter) override;
    /// Appends one block, whatever its start. The session goes on after a failure. A block above
    /// 2147483647 bytes is refused without a text.
    std::int32_t WriteSamples(ATWriter& inWriter, TarvoWriteSamplesInterface& inBlock) override;
    /// Success frees the writer. After a failure the file is closed, and the writer is still the
    /// host's: a second call frees it. Neither flag nor format changes anything.
    std::int32_t FinishWrite(ATWriter& inWriter, bool inFlag,
                             const TarvoFormatInterface& inFormat) override;

private:
    // Completes the text of a failure and shows it to the host if it can be told. The site gives
    // the result. The text is one for the localiser, or a finished one.
    std::int32_t ReportFailure(const char* inGeneralText,
                               appleaudiotoolbox::ExtendedErrorInfo& ioInfo);
    std::int32_t ReportFailure(const UTF16String& inGeneralText,
                               appleaudiotoolbox::ExtendedErrorInfo& ioInfo);
};

}  // namespace tarvo

#endif
