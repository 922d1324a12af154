// TarvoExtensionList: file extensions on their way from the plug-in to the host.
//
// A circular list of 8-bit texts with the list itself as the sentinel and no count. This is the
// binary form that both sides share; an empty list points at itself twice.
#ifndef TARVOSDK_TARVOEXTENSIONLIST_H
#define TARVOSDK_TARVOEXTENSIONLIST_H

/// Two neighbours in the circle. In the list itself they are the first and the last node.
struct TarvoExtensionLink
{
    TarvoExtensionLink* mNext;
    TarvoExtensionLink* mPrevious;
};

/// One extension.
struct TarvoExtensionNode : TarvoExtensionLink
{
    const char* mText;  ///< UTF-8 without a dot, ends in a zero byte, never null
};

/// The head. List, nodes and texts belong to the plug-in and last until the host operation returns.
///
/// A host walks it so:
///   for (const TarvoExtensionLink* link = list->mNext; link != list; link = link->mNext)
///       Use(static_cast<const TarvoExtensionNode*>(link)->mText);
struct TarvoExtensionList : TarvoExtensionLink
{
};

static_assert(sizeof(TarvoExtensionList) == 16 && sizeof(TarvoExtensionNode) == 24);

#endif
