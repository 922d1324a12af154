// BitrateProbe: one converter, put into each control mode in turn.
#include "appleaudiotoolbox/utility/BitrateProbe.h"

#include "appleaudiotoolbox/src/TracePlace.h"
#include "appleaudiotoolbox/utility/src/ProbeConverter.h"
#include "appleaudiotoolbox/utility/src/PropertyLists.h"

namespace appleaudiotoolbox
{

namespace
{

enum class Pruning
{
    Plain,  // by the list alone
    Trying  // by setting each rate
};

constexpr const char* kModeTraces[] = {  // by control mode
    "\t      Supports CBR\n", "\t      Supports Long-Term Average\n",
    "\t      Supports VBR (Constrained)\n", "\t      Supports VBR\n"};

void TraceMode(UInt32 inMode)
{
    static constinit TracePlace sPlaces[] = {TracePlace(7), TracePlace(7), TracePlace(7),
                                             TracePlace(7)};
    if (sPlaces[inMode].IsWanted())
        sPlaces[inMode].Write(kModeTraces[inMode]);
}

// The low 32 bits of the whole part; 0 for what no 64-bit integer holds.
UInt32 WholeRate(double inRate)
{
    constexpr double kLimit = 9223372036854775808.0;
    if (!(inRate > -kLimit && inRate < kLimit))
        return 0;
    return static_cast<UInt32>(static_cast<SInt64>(inRate));
}

class Probe
{
public:
    explicit Probe(AudioConverterRef inConverter) : mConverter(inConverter) {}

    /// The rates of one mode. False without a pruned list: the mode is refused, with ioRates
    /// untouched, or its rates cannot be read, with ranges of zeros in their place.
    bool LearnRates(UInt32 inMode, Pruning inPruning, ATBitrateList& ioRates)
    {
        if (AudioConverterSetProperty(mConverter, kAudioCodecPropertyBitRateControlMode,
                                      sizeof(inMode), &inMode) != noErr ||
            !ReadRates(ioRates))
            return false;
        TraceMode(inMode);
        Prune(inPruning, ioRates);
        return true;
    }

    /// The rate that the encoder is at; ioRate stays where it does not tell.
    void ReadCurrentRate(UInt32& ioRate)
    {
        mWorkingSize = sizeof(ioRate);
        (void)AudioConverterGetProperty(mConverter, kAudioConverterEncodeBitRate, &mWorkingSize,
                                        &ioRate);
    }

private:
    bool ReadRates(ATBitrateList& ioRates)
    {
        // Where the size is not told, that of an earlier step stands.
        (void)AudioConverterGetPropertyInfo(mConverter, kAudioConverterApplicableEncodeBitRates,
                                            &mWorkingSize, nullptr);
        ioRates.resize(mWorkingSize / sizeof(AudioValueRange));
        ATBitrateList rates;
        const auto getValue = [this](UInt32* ioBytes, void* outData)
        {
            const OSStatus status = AudioConverterGetProperty(
                mConverter, kAudioConverterApplicableEncodeBitRates, ioBytes, outData);
            mWorkingSize = *ioBytes;
            return status;
        };
        if (ReadValues(mWorkingSize, getValue, rates) != noErr)
            return false;
        ioRates.swap(rates);
        return true;
    }

    // From the last to the first, so that the converter is left at the first rate it accepted.
    void Prune(Pruning inPruning, ATBitrateList& ioRates)
    {
        for (std::size_t index = ioRates.size(); index-- > 0;)
        {
            const double rate = ioRates[index].mMinimum;
            if (rate == 0.0 || (inPruning == Pruning::Trying && !Accepts(rate)))
                ioRates.erase(ioRates.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }

    bool Accepts(double inRate)
    {
        const UInt32 rate = WholeRate(inRate);
        return AudioConverterSetProperty(mConverter, kAudioConverterEncodeBitRate, sizeof(rate),
                                         &rate) == noErr;
    }

    AudioConverterRef mConverter;
    UInt32 mWorkingSize = 0;  // goes through all passes
};

// An encoder without a rate of its own answers a negative one. The middle of the list stands in.
void ReplaceNegativeRate(const ATBitrateList& inRates, UInt32& ioRate)
{
    if (static_cast<SInt32>(ioRate) < 0 && !inRates.empty())
        ioRate = WholeRate(inRates[inRates.size() / 2].mMinimum);
}

}  // namespace

void QueryFormatBitrateInformation(ATFormatType& ioFormatType,
                                   const CAStreamBasicDescription* inSourceFormat)
{
    const AudioStreamBasicDescription source =
        inSourceFormat ? *inSourceFormat : kReferenceSourceFormat;
    const Pruning pruning = inSourceFormat ? Pruning::Trying : Pruning::Plain;
    const ProbeConverter converter(source, ioFormatType.mFormatDescription);
    if (converter.Status() != noErr || !converter.Get())
        return;

    Probe probe(converter.Get());
    if (probe.LearnRates(kAudioCodecBitRateControlMode_Constant, pruning,
                         ioFormatType.mBitratesCBR))
    {
        probe.ReadCurrentRate(ioFormatType.mDefaultCBR);
        ReplaceNegativeRate(ioFormatType.mBitratesCBR, ioFormatType.mDefaultCBR);
    }
    // This mode keeps what the encoder answers.
    if (probe.LearnRates(kAudioCodecBitRateControlMode_LongTermAverage, pruning,
                         ioFormatType.mBitratesLTA))
        probe.ReadCurrentRate(ioFormatType.mDefaultLTA);

    ATBitrateList variable;
    if (probe.LearnRates(kAudioCodecBitRateControlMode_Variable, Pruning::Plain, variable))
        ioFormatType.mSupportsVBR = !variable.empty();

    if (probe.LearnRates(kAudioCodecBitRateControlMode_VariableConstrained, pruning,
                         ioFormatType.mBitratesVBRConstrained))
    {
        probe.ReadCurrentRate(ioFormatType.mDefaultVBRConstrained);
        ReplaceNegativeRate(ioFormatType.mBitratesVBRConstrained,
                            ioFormatType.mDefaultVBRConstrained);
    }
}

}  // namespace appleaudiotoolbox
