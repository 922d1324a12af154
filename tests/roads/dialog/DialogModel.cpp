#include "tests/roads/dialog/DialogModel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>

namespace testing_support
{

namespace
{

constexpr std::uint32_t kFlagFloat = 1;
constexpr std::uint32_t kFlagBigEndian = 2;
constexpr std::uint32_t kVariable = 3;
constexpr std::uint32_t kQualities[] = {127, 96, 64, 32, 0};

// What is known of the encoders. No rates: any; mBits: what a sample is taken to cost.
struct EncoderLimits
{
    const char* mFormat;
    std::vector<int> mRates;
    int mMostChannels;
    double mBits;
};

const std::vector<EncoderLimits>& Limits()
{
    static const std::vector<int> kAACRates = {7350,  8000,  11025, 12000, 16000, 22050, 24000,
                                               32000, 44100, 48000, 64000, 88200, 96000};
    static const std::vector<int> kMP3Rates = {8000,  11025, 12000, 16000, 22050,
                                               24000, 32000, 44100, 48000};
    static const std::vector<EncoderLimits> kLimits = {
        {"aac ", kAACRates, 8, 0},
        {".mp3", kMP3Rates, 2, 0},
        {".mp2", {16000, 22050, 24000, 32000, 44100, 48000}, 2, 0},
        {"ac-3", {32000, 44100, 48000}, 6, 0},
        {"ec-3", {32000, 44100, 48000}, 6, 0},
        {"opus", {8000, 12000, 16000, 24000, 48000}, 8, 0},
        {"alac", {}, 8, 7.71},
        {"flac", {}, 8, 0},
        {"ima4", {}, 2, 2.0},
        {"alaw", {}, 64, 4.0},
        {"ulaw", {}, 64, 4.0},
        {"lpcm", {}, 64, 0},
    };
    return kLimits;
}

const EncoderLimits& LimitsOf(const std::string& inFormat)
{
    static const EncoderLimits kMSADPCM = {"", {}, 2, 0};
    static const EncoderLimits kGSM = {"", {8000}, 1, 0};
    if (inFormat.starts_with("ms"))
        return inFormat.back() == '1' ? kGSM : kMSADPCM;
    for (const EncoderLimits& limits : Limits())
        if (inFormat == limits.mFormat)
            return limits;
    throw std::runtime_error("nothing is known of the format " + inFormat);
}

bool HasRate(const EncoderLimits& inLimits, int inRate)
{
    return inLimits.mRates.empty() || std::find(inLimits.mRates.begin(), inLimits.mRates.end(),
                                                inRate) != inLimits.mRates.end();
}

std::string NumberText(double inNumber)
{
    char text[40];
    std::snprintf(text, sizeof(text), "%.2f", inNumber);
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.')
        number.pop_back();
    return number;
}

std::string BitrateText(const std::pair<double, double>& inRate)
{
    const double low = inRate.first;
    if (low <= 0)
        return "(Unable to Calculate Bitrate)";
    const bool isKilo = low >= 1e3 && low < 1e6;
    const bool isMega = low >= 1e6 && low < 1e9;
    const double scale = isKilo ? 1e3 : isMega ? 1e6 : 1;
    std::string text = NumberText(low / scale);
    if (inRate.second > low)
        text += " - " + NumberText(inRate.second / scale);
    return text + (isKilo ? " kbps" : isMega ? " Mbps" : " bps");
}

std::string ModeText(std::uint32_t inMode)
{
    constexpr const char* kTexts[] = {"Constant Bitrate", "Long-Term Average Bitrate",
                                      "Variable Bitrate (Constrained)", "Variable Bitrate"};
    return kTexts[inMode];
}

template <typename Item>
int IndexOf(const std::vector<Item>& inItems, const Item& inItem)
{
    const auto found = std::find(inItems.begin(), inItems.end(), inItem);
    return found == inItems.end() ? 0 : static_cast<int>(found - inItems.begin());
}

std::string Text(const PopupState& inPopup)
{
    std::string text = std::string(inPopup.mIsVisible ? "shown" : "hidden") +
                       (inPopup.mIsEnabled ? ", enabled, " : ", disabled, ") +
                       std::to_string(inPopup.mValue) + " of";
    for (const std::string& item : inPopup.mItems)
        text += " [" + item + "]";
    return text;
}

}  // namespace

std::string Differences(const DialogState& inExpected, const DialogState& inShown)
{
    std::string text;
    const auto add =
        [&](const std::string& inPart, const std::string& inWanted, const std::string& inFound)
    {
        if (inWanted != inFound)
            text += inPart + "\n  expected " + inWanted + "\n  shown    " + inFound + "\n";
    };
    for (int popup = 0; popup < kPopupCount; ++popup)
        add(kPopupNames[popup], Text(inExpected.mPopups[popup]), Text(inShown.mPopups[popup]));
    add("label", inExpected.mLabel, inShown.mLabel);
    add("OK", inExpected.mIsOKEnabled ? "enabled" : "disabled",
        inShown.mIsOKEnabled ? "enabled" : "disabled");
    return text;
}

DialogModel::DialogModel(const DialogAudio& inAudio, const Start& inStart, bool inIsTypeFixed)
    : mAudio(inAudio),
      mIsTypeFixed(inIsTypeFixed),
      mFlags(inStart.mFlags),
      mMode(inStart.mMode),
      mBitrate(inStart.mBitrate),
      mQuality(inStart.mQuality)
{
    while (Types().at(mType).mCode != inStart.mType)
        ++mType;
    while (Types()[mType].mFormats.at(mFormat).mCode != inStart.mFormat)
        ++mFormat;
    for (const CatalogueMode& mode : Format().mModes)
        mModeItems.push_back(mode.mMode);
    mModeValue = IndexOf(mModeItems, mMode);
    mQualityValue = static_cast<int>(
        std::find(std::begin(kQualities), std::end(kQualities), mQuality) - kQualities);
    TypeChanged();
}

const Catalogue& DialogModel::Types() const
{
    return CatalogueFor(mAudio.mRate, mAudio.mChannels);
}

// With the bit rates of the channels that its encoder comes to. The rate stays what it is.
const CatalogueFormat& DialogModel::Format() const
{
    const EncoderLimits& limits = LimitsOf(Types()[mType].mFormats[mFormat].mCode);
    return CatalogueFor(mAudio.mRate, std::min(mAudio.mChannels, limits.mMostChannels))[mType]
        .mFormats[mFormat];
}

std::vector<std::size_t> DialogModel::OfferedVariants() const
{
    std::vector<std::size_t> offered;
    for (std::size_t i = 0; i < Format().mVariants.size(); ++i)
        if (const std::uint32_t bits = Format().mVariants[i].mBits;
            bits == 0 || bits == mAudio.mDepth)
            offered.push_back(i);
    return offered;
}

const CatalogueMode* DialogModel::FindMode(std::uint32_t inMode) const
{
    for (const CatalogueMode& mode : Format().mModes)
        if (mode.mMode == inMode)
            return &mode;
    return nullptr;
}

void DialogModel::Choose(PopupID inPopup, int inItem)
{
    switch (inPopup)
    {
        case kTypePopup:
        {
            const std::string format = FormatCode();
            mType = static_cast<std::size_t>(inItem);
            mFormat = 0;
            const auto& formats = Types()[mType].mFormats;
            for (std::size_t i = 0; i < formats.size(); ++i)
                if (formats[i].mCode == format)
                    mFormat = i;
            return TypeChanged();
        }
        case kFormatPopup:
            mFormat = static_cast<std::size_t>(inItem);
            return FormatChanged();
        case kVariantPopup:
            mVariant = OfferedVariants()[static_cast<std::size_t>(inItem)];
            return VariantChanged();
        case kModePopup:
            mModeValue = inItem;
            return ModeChanged();
        case kBitratePopup:
            mBitrateValue = inItem;
            return BitrateChanged();
        default:
            mQualityValue = inItem;
            mQuality = kQualities[inItem];
    }
}

void DialogModel::TypeChanged()
{
    ApplyFormat();
    FormatChanged();
}

// Depth first, then the kind of number, then the byte order of what there was. A wish that none
// fulfils ends the choice.
void DialogModel::ApplyFormat()
{
    std::vector<CatalogueVariant> left = Format().mVariants;
    CatalogueVariant chosen = left.front();
    const auto narrow = [&](auto inSuits)
    {
        std::erase_if(left, std::not_fn(inSuits));
        if (!left.empty())
            chosen = left.front();
    };
    const std::uint32_t flags = mFlags;
    narrow([&](const CatalogueVariant& inVariant) { return inVariant.mBits == mAudio.mDepth; });
    for (const std::uint32_t flag : {kFlagFloat, kFlagBigEndian})
        narrow([&](const CatalogueVariant& inVariant)
               { return ((inVariant.mFlags ^ flags) & flag) == 0; });
    mFlags = chosen.mFlags;
    mVariant = static_cast<std::size_t>(IndexOf(Format().mVariants, chosen));
}

void DialogModel::FormatChanged()
{
    ApplyFormat();
    ReadMode();
    mModeItems.clear();
    for (const CatalogueMode& mode : Format().mModes)
        mModeItems.push_back(mode.mMode);
    mModeValue = IndexOf(mModeItems, mMode);
    mHasBitrates = !mModeItems.empty() && OfferedVariants().size() == 1;
    if (mHasBitrates)
        return ModeChanged();
    mLabelsQuality = false;
    VariantChanged();
}

void DialogModel::VariantChanged()
{
    const CatalogueVariant& variant = Format().mVariants[mVariant];
    mFlags = variant.mFlags;
    const EncoderLimits& limits = LimitsOf(FormatCode());
    const double bits = variant.mBits != 0 ? variant.mBits : limits.mBits;
    mBitrateItems = {{mAudio.mRate * bits * std::min(mAudio.mChannels, limits.mMostChannels), 0}};
    mBitrateValue = 0;
    ReadBitrate();
}

void DialogModel::ModeChanged()
{
    ReadMode();
    ReadBitrate();
    mShowsQuality = mLabelsQuality = mMode == kVariable;
    if (mShowsQuality)
    {
        mQuality = kQualities[mQualityValue];
        return;
    }
    mBitrateItems = FindMode(mMode)->mBitrates;
    mBitrateValue = 0;
    for (std::size_t i = 0; i < mBitrateItems.size(); ++i)
        if (mBitrateItems[i].first == mBitrate)
            mBitrateValue = static_cast<int>(i);
    BitrateChanged();
}

void DialogModel::BitrateChanged()
{
    ReadBitrate();
}

void DialogModel::ReadMode()
{
    if (static_cast<std::size_t>(mModeValue) < mModeItems.size())
        mMode = mModeItems[static_cast<std::size_t>(mModeValue)];
}

void DialogModel::ReadBitrate()
{
    if (static_cast<std::size_t>(mBitrateValue) < mBitrateItems.size())
        mBitrate = std::trunc(mBitrateItems[static_cast<std::size_t>(mBitrateValue)].first);
}

DialogState DialogModel::State() const
{
    DialogState state;
    auto& popups = state.mPopups;
    for (const CatalogueType& type : Types())
        popups[kTypePopup].mItems.push_back(type.mName);
    popups[kTypePopup].mValue = static_cast<int>(mType);
    popups[kTypePopup].mIsEnabled = !mIsTypeFixed;
    for (const CatalogueFormat& format : Types()[mType].mFormats)
        popups[kFormatPopup].mItems.push_back(format.mName);
    popups[kFormatPopup].mValue = static_cast<int>(mFormat);
    const std::vector<std::size_t> offered = OfferedVariants();
    for (const std::size_t variant : offered)
        popups[kVariantPopup].mItems.push_back(Format().mVariants[variant].mName);
    popups[kVariantPopup].mValue = offered.empty() ? -1 : IndexOf(offered, mVariant);
    for (const std::uint32_t mode : mModeItems)
        popups[kModePopup].mItems.push_back(ModeText(mode));
    popups[kModePopup].mValue = mModeItems.empty() ? -1 : mModeValue;
    for (const auto& rate : mBitrateItems)
        popups[kBitratePopup].mItems.push_back(BitrateText(rate));
    popups[kBitratePopup].mValue = mBitrateItems.empty() ? -1 : mBitrateValue;
    popups[kQualityPopup].mItems = {"Maximum", "High", "Medium", "Low", "Minimum"};
    popups[kQualityPopup].mValue = mQualityValue;

    for (const PopupID popup : {kFormatPopup, kVariantPopup, kModePopup, kBitratePopup})
        popups[popup].mIsEnabled = popups[popup].mItems.size() >= 2;
    popups[kVariantPopup].mIsVisible = !mHasBitrates;
    popups[kModePopup].mIsVisible = mHasBitrates;
    popups[kBitratePopup].mIsVisible = !mShowsQuality;
    popups[kQualityPopup].mIsVisible = mShowsQuality;
    // The encoder has the last word on the rate.
    state.mIsOKEnabled = HasRate(LimitsOf(FormatCode()), mAudio.mRate);
    state.mLabel = mLabelsQuality ? "VBR Quality:" : "Bitrate:";
    return state;
}

int DialogModel::Choices(PopupID inPopup) const
{
    const PopupState popup = State().mPopups[inPopup];
    return popup.mIsEnabled && popup.mIsVisible ? static_cast<int>(popup.mItems.size()) : 0;
}

}  // namespace testing_support
