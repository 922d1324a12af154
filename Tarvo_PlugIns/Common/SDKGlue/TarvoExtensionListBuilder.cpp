#include "Tarvo_PlugIns/Common/SDKGlue/TarvoExtensionListBuilder.h"

namespace tarvo
{

TarvoExtensionListBuilder::TarvoExtensionListBuilder()
{
    mList.mNext = &mList;
    mList.mPrevious = &mList;
}

TarvoExtensionListBuilder::~TarvoExtensionListBuilder()
{
    TarvoExtensionLink* link = mList.mNext;
    while (link != &mList)
    {
        TarvoExtensionLink* const next = link->mNext;
        delete static_cast<TarvoExtensionNode*>(link);
        link = next;
    }
}

void TarvoExtensionListBuilder::Append(const char* inText)
{
    auto* const node = new TarvoExtensionNode{{&mList, mList.mPrevious}, inText};
    node->mPrevious->mNext = node;
    mList.mPrevious = node;
}

}  // namespace tarvo
