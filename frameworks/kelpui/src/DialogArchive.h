// DialogArchive: what a form says about the controls in it.
#ifndef KELPUI_DIALOGARCHIVE_H
#define KELPUI_DIALOGARCHIVE_H

#include "kelpcore/Strings.h"

#include <string_view>
#include <vector>

namespace kelpui::ui
{

/// One named widget. Texts are those of the file, not translated.
struct ArchivedControl
{
    UTF8String mClass;
    UTF8String mID;
    UTF8String mText;
    std::vector<UTF8String> mItems;
    long mCurrentItem = 0;
    bool mIsEnabled = true;
    bool mIsVisible = true;
};

enum class ArchiveFault
{
    None,
    NotXML,       // mDetail: the line
    NotAForm,     // no "ui" with a "widget" in it
    DuplicateID,  // mDetail: the ID
    BadValue,     // no number or truth value where there has to be one; mDetail: the line
    TooLarge      // beyond the limits below, or with declarations of its own
};

struct ArchiveResult
{
    ArchiveFault mFault = ArchiveFault::None;
    UTF8String mDetail;
};

// Far beyond any form that a person draws.
constexpr std::size_t kMaxArchiveBytes = 1u << 20;
constexpr std::size_t kMaxArchiveDepth = 100;
constexpr std::size_t kMaxArchiveControls = 1000;
constexpr std::size_t kMaxArchiveItems = 10000;  // of all popups together

/// Reads the bytes of a form. outControls has its named widgets in the order of the file, without
/// the form itself; it is empty after a fault.
ArchiveResult ParseDialogArchive(std::string_view inBytes,
                                 std::vector<ArchivedControl>& outControls);

}  // namespace kelpui::ui

#endif
