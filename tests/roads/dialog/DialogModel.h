// DialogModel: what the settings dialog has to show, worked out from tarvo's command line and from
// what is known of the encoders, without the dialog's own code.
#ifndef TESTS_ROADS_DIALOG_DIALOGMODEL_H
#define TESTS_ROADS_DIALOG_DIALOGMODEL_H

#include "tests/roads/dialog/Catalogue.h"

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace testing_support
{

enum PopupID
{
    kTypePopup,
    kFormatPopup,
    kVariantPopup,
    kModePopup,
    kBitratePopup,
    kQualityPopup,
    kPopupCount
};

/// Object names of the popups, in the order above.
constexpr const char* kPopupNames[kPopupCount] = {"FileTypePopupID", "FormatTypePopupID",
                                                  "VariantPopupID",  "BitrateModePopupID",
                                                  "BitratePopupID",  "VBRQualityPopupID"};

struct PopupState
{
    std::vector<std::string> mItems;
    int mValue = -1;  // -1: no item
    bool mIsEnabled = true;
    bool mIsVisible = true;

    bool operator==(const PopupState&) const = default;
};

struct DialogState
{
    std::array<PopupState, kPopupCount> mPopups;
    std::string mLabel;  // beside bit rate or quality
    bool mIsOKEnabled = true;

    bool operator==(const DialogState&) const = default;
};

/// Names the parts that differ, for failures.
std::string Differences(const DialogState& inExpected, const DialogState& inShown);

struct DialogAudio
{
    int mRate = 0;
    int mChannels = 0;
    std::uint32_t mDepth = 0;
};

class DialogModel
{
public:
    /// inType, inFormat, inFlags, inMode, inBitrate, inQuality  of the settings that the dialog
    /// opens with
    struct Start
    {
        std::string mType;
        std::string mFormat;
        std::uint32_t mFlags = 0;
        std::uint32_t mMode = 0;
        std::uint32_t mBitrate = 0;
        std::uint32_t mQuality = 0;
    };

    DialogModel(const DialogAudio& inAudio, const Start& inStart, bool inIsTypeFixed = false);

    /// The user's choice in a popup that shows and is enabled.
    void Choose(PopupID inPopup, int inItem);

    DialogState State() const;
    /// Items that the user can choose from: 0 for a popup that is hidden or disabled.
    int Choices(PopupID inPopup) const;

    const std::string& TypeCode() const { return Types()[mType].mCode; }
    const std::string& FormatCode() const { return Format().mCode; }

private:
    const Catalogue& Types() const;
    const CatalogueFormat& Format() const;
    std::vector<std::size_t> OfferedVariants() const;  // of the format's
    const CatalogueMode* FindMode(std::uint32_t inMode) const;

    void TypeChanged();
    void FormatChanged();
    void VariantChanged();
    void ModeChanged();
    void BitrateChanged();
    void ApplyFormat();
    void ReadMode();
    void ReadBitrate();

    const DialogAudio mAudio;
    const bool mIsTypeFixed;
    std::size_t mType = 0;
    std::size_t mFormat = 0;
    std::size_t mVariant = 0;  // of the format's, all of them
    std::uint32_t mFlags = 0;  // of that variant
    std::uint32_t mMode = 0;
    double mBitrate = 0;
    std::uint32_t mQuality = 0;

    // What the popups below the format hold, which may be of an earlier choice.
    std::vector<std::uint32_t> mModeItems;
    int mModeValue = 0;
    std::vector<std::pair<double, double>> mBitrateItems;  // high end 0: computed
    int mBitrateValue = 0;
    int mQualityValue = 0;
    bool mHasBitrates = false;
    bool mShowsQuality = false;
    bool mLabelsQuality = false;
};

}  // namespace testing_support

#endif
