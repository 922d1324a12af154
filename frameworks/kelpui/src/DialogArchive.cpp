#include "DialogArchive.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>

namespace kelpui::ui
{
namespace
{

using ParserPtr = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

enum class Element
{
    Other,
    Form,  // "ui", the root
    Widget,
    Item,  // of a layout, or of a popup
    Property,
    Value  // "string", "bool", "number" within a property
};

struct ElementName
{
    const char* mName;
    Element mElement;
};

constexpr ElementName kElements[] = {
    {"ui", Element::Form},           {"widget", Element::Widget}, {"item", Element::Item},
    {"property", Element::Property}, {"string", Element::Value},  {"bool", Element::Value},
    {"number", Element::Value},
};

Element ElementOf(const char* inName)
{
    for (const ElementName& row : kElements)
        if (std::strcmp(row.mName, inName) == 0)
            return row.mElement;
    return Element::Other;
}

UTF8String Attribute(const char** inAttributes, const char* inName)
{
    for (; *inAttributes; inAttributes += 2)
        if (std::strcmp(inAttributes[0], inName) == 0)
            return inAttributes[1];
    return UTF8String();
}

bool ReadBool(const UTF8String& inText, bool& outValue)
{
    outValue = inText == "true";
    return outValue || inText == "false";
}

bool ReadNumber(const UTF8String& inText, long& outValue)
{
    const char* const end = inText.data() + inText.size();
    const auto result = std::from_chars(inText.data(), end, outValue);
    return result.ec == std::errc() && result.ptr == end;
}

bool StoreText(ArchivedControl& outControl, const UTF8String& inText)
{
    outControl.mText = inText;
    return true;
}
bool StoreEnabled(ArchivedControl& outControl, const UTF8String& inText)
{
    return ReadBool(inText, outControl.mIsEnabled);
}
bool StoreVisible(ArchivedControl& outControl, const UTF8String& inText)
{
    return ReadBool(inText, outControl.mIsVisible);
}
bool StoreCurrentItem(ArchivedControl& outControl, const UTF8String& inText)
{
    return ReadNumber(inText, outControl.mCurrentItem);
}

// Properties that a control starts with; false for a value of another kind.
struct PropertyRow
{
    const char* mName;
    bool (*mStore)(ArchivedControl& outControl, const UTF8String& inText);
};

constexpr PropertyRow kProperties[] = {
    {"text", &StoreText},
    {"enabled", &StoreEnabled},
    {"visible", &StoreVisible},
    {"currentIndex", &StoreCurrentItem},
};

// Follows the elements down; the controls are those of the widgets that were left already.
class Reader
{
public:
    explicit Reader(XML_Parser inParser) : mParser(inParser) {}

    void Open(const char* inName, const char** inAttributes);
    void Close();
    void Text(const char* inText, int inBytes)
    {
        if (IsIn(Element::Value))
            mText.append(inText, static_cast<std::size_t>(inBytes));
    }
    void Fail(ArchiveFault inFault, const UTF8String& inDetail)
    {
        if (!HasFailed())
            mResult = {inFault, inDetail};
        XML_StopParser(mParser, XML_FALSE);
    }
    bool HasFailed() const { return mResult.mFault != ArchiveFault::None; }
    void FailHere(ArchiveFault inFault)
    {
        Fail(inFault, std::to_string(XML_GetCurrentLineNumber(mParser)).c_str());
    }
    ArchiveResult Finish(bool inIsWhole, std::vector<ArchivedControl>& outControls);

private:
    bool IsIn(Element inElement) const { return !mPath.empty() && mPath.back() == inElement; }
    // Of the element whose last child is being read.
    bool IsParent(Element inElement) const
    {
        return mPath.size() > 1 && mPath[mPath.size() - 2] == inElement;
    }
    void OpenWidget(const char** inAttributes);
    void CloseWidget();
    void StoreValue();

    XML_Parser mParser;
    std::vector<Element> mPath;
    std::vector<ArchivedControl> mWidgets;  // open ones, outermost first
    std::vector<ArchivedControl> mControls;
    UTF8String mProperty;
    UTF8String mText;
    std::size_t mItemCount = 0;
    bool mHasForm = false;
    ArchiveResult mResult;
};

void Reader::Open(const char* inName, const char** inAttributes)
{
    const Element element = ElementOf(inName);
    if (mPath.size() == kMaxArchiveDepth)
        return Fail(ArchiveFault::TooLarge, {});
    if (mPath.empty() && element != Element::Form)
        return Fail(ArchiveFault::NotAForm, {});
    if (element == Element::Widget)
        OpenWidget(inAttributes);
    else if (element == Element::Property)
        mProperty = Attribute(inAttributes, "name");
    mText.clear();
    mPath.push_back(element);
}

void Reader::OpenWidget(const char** inAttributes)
{
    ArchivedControl control;
    control.mClass = Attribute(inAttributes, "class");
    control.mID = Attribute(inAttributes, "name");
    mHasForm = true;
    mWidgets.push_back(std::move(control));
}

void Reader::Close()
{
    if (IsIn(Element::Value) && IsParent(Element::Property))
        StoreValue();
    else if (IsIn(Element::Widget))
        CloseWidget();
    mPath.pop_back();
}

// A property belongs to the widget around it, or to the popup's item around it.
void Reader::StoreValue()
{
    const Element owner = mPath.size() > 2 ? mPath[mPath.size() - 3] : Element::Other;
    const bool isItem =
        owner == Element::Item && mPath.size() > 3 && mPath[mPath.size() - 4] == Element::Widget;
    if (isItem && mProperty == "text")
    {
        if (++mItemCount > kMaxArchiveItems)
            return Fail(ArchiveFault::TooLarge, {});
        mWidgets.back().mItems.push_back(mText);
    }
    if (owner != Element::Widget)
        return;
    for (const PropertyRow& row : kProperties)
        if (mProperty == row.mName && !row.mStore(mWidgets.back(), mText))
            return FailHere(ArchiveFault::BadValue);
}

void Reader::CloseWidget()
{
    const ArchivedControl widget = std::move(mWidgets.back());
    mWidgets.pop_back();
    if (widget.mID.empty() || mWidgets.empty())  // the outermost one is the form
        return;
    const auto isSame = [&](const ArchivedControl& control) { return control.mID == widget.mID; };
    if (std::any_of(mControls.begin(), mControls.end(), isSame))
        return Fail(ArchiveFault::DuplicateID, widget.mID);
    if (mControls.size() == kMaxArchiveControls)
        return Fail(ArchiveFault::TooLarge, {});
    mControls.push_back(widget);
}

ArchiveResult Reader::Finish(bool inIsWhole, std::vector<ArchivedControl>& outControls)
{
    if (!inIsWhole && !HasFailed())
        FailHere(ArchiveFault::NotXML);
    if (!HasFailed() && !mHasForm)
        mResult = {ArchiveFault::NotAForm, {}};
    if (!HasFailed())
        outControls.swap(mControls);
    return mResult;
}

Reader& ReaderOf(void* inUserData)
{
    return *static_cast<Reader*>(inUserData);
}

// A parser that was told to stop still tells of what it has begun, such as an empty element's end.
void XMLCALL OnOpen(void* inUserData, const char* inName, const char** inAttributes)
{
    if (!ReaderOf(inUserData).HasFailed())
        ReaderOf(inUserData).Open(inName, inAttributes);
}

void XMLCALL OnClose(void* inUserData, const char*)
{
    if (!ReaderOf(inUserData).HasFailed())
        ReaderOf(inUserData).Close();
}

void XMLCALL OnText(void* inUserData, const char* inText, int inBytes)
{
    if (!ReaderOf(inUserData).HasFailed())
        ReaderOf(inUserData).Text(inText, inBytes);
}

// Forms declare nothing; declarations are how small files become large ones.
void XMLCALL OnDeclaration(void* inUserData, const char*, const char*, const char*, int)
{
    ReaderOf(inUserData).Fail(ArchiveFault::TooLarge, {});
}

}  // namespace

ArchiveResult ParseDialogArchive(std::string_view inBytes,
                                 std::vector<ArchivedControl>& outControls)
{
    outControls.clear();
    if (inBytes.size() > kMaxArchiveBytes)
        return {ArchiveFault::TooLarge, {}};
    const ParserPtr parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    Reader reader(parser.get());
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), &OnOpen, &OnClose);
    XML_SetCharacterDataHandler(parser.get(), &OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), &OnDeclaration);
    const XML_Status status =
        XML_Parse(parser.get(), inBytes.data(), static_cast<int>(inBytes.size()), XML_TRUE);
    return reader.Finish(status == XML_STATUS_OK, outControls);
}

}  // namespace kelpui::ui
