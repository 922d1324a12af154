// What is read out of a form, and which files are none.
#include "frameworks/kelpui/src/DialogArchive.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace kelpui::ui;

struct Archive
{
    explicit Archive(const std::string& inBytes)
    {
        mControls.emplace_back();  // whatever was there goes
        mResult = ParseDialogArchive(inBytes, mControls);
    }
    std::vector<ArchivedControl> mControls;
    ArchiveResult mResult;
};

std::string Form(const std::string& inContent)
{
    return "<ui version=\"4.0\"><widget class=\"QDialog\" name=\"Form\">" + inContent +
           "</widget></ui>";
}

std::string Widget(const std::string& inClass, const std::string& inName,
                   const std::string& inContent = {})
{
    return "<widget class=\"" + inClass + "\" name=\"" + inName + "\">" + inContent + "</widget>";
}

std::string Property(const std::string& inName, const std::string& inValue)
{
    return "<property name=\"" + inName + "\">" + inValue + "</property>";
}

std::string Item(const std::string& inText)
{
    return "<item>" + Property("text", "<string>" + inText + "</string>") + "</item>";
}

// "QLabel TextID 'text' (item, item) at 0 disabled hidden"
std::string Describe(const ArchivedControl& inControl)
{
    std::string line =
        std::string(inControl.mClass + " " + inControl.mID + " '" + inControl.mText + "' (");
    for (std::size_t i = 0; i < inControl.mItems.size(); ++i)
        line += (i == 0 ? "" : ", ") + std::string(inControl.mItems[i]);
    return line + ") at " + std::to_string(inControl.mCurrentItem) +
           (inControl.mIsEnabled ? "" : " disabled") + (inControl.mIsVisible ? "" : " hidden");
}

std::vector<std::string> Controls(const std::string& inContent)
{
    const Archive archive(Form(inContent));
    EXPECT_EQ(archive.mResult.mFault, ArchiveFault::None);
    std::vector<std::string> lines;
    for (const ArchivedControl& control : archive.mControls)
        lines.push_back(Describe(control));
    return lines;
}

using Lines = std::vector<std::string>;

void ExpectFault(const std::string& inBytes, ArchiveFault inFault, const std::string& inDetail = {})
{
    const Archive archive(inBytes);
    EXPECT_EQ(archive.mResult.mFault, inFault) << inBytes.substr(0, 200);
    EXPECT_EQ(archive.mResult.mDetail, inDetail.c_str()) << inBytes.substr(0, 200);
    EXPECT_TRUE(archive.mControls.empty()) << inBytes.substr(0, 200);
}

}  // namespace

TEST(DialogArchive, HasTheNamedWidgetsInTheirOrder)
{
    EXPECT_EQ(Controls(Widget("QLabel", "A") + Widget("QPushButton", "B") + Widget("QLabel", "") +
                       "<widget/>" + Widget("QComboBox", "C")),
              (Lines{"QLabel A '' () at 0", "QPushButton B '' () at 0", "QComboBox C '' () at 0"}));
}

TEST(DialogArchive, AFormMayBeEmpty)
{
    EXPECT_EQ(Controls(""), Lines());
}

TEST(DialogArchive, WidgetsWithinLayoutsAndWidgetsCountToo)
{
    EXPECT_EQ(Controls("<layout class=\"QGridLayout\" name=\"L\"><item>" +
                       Widget("QFrame", "Outer",
                              "<layout><item>" + Widget("QLabel", "Inner") + "</item></layout>") +
                       "</item></layout>"),
              (Lines{"QLabel Inner '' () at 0", "QFrame Outer '' () at 0"}));
}

TEST(DialogArchive, StatesWhatControlsStartWith)
{
    EXPECT_EQ(Controls(Widget("QLabel", "A",
                              Property("text", "<string>a &lt;b&gt; &#xE4;</string>") +
                                  Property("visible", "<bool>false</bool>")) +
                       Widget("QComboBox", "B",
                              Property("enabled", "<bool>false</bool>") +
                                  Property("currentIndex", "<number>-1</number>") + Item("x") +
                                  Item("") + Item("z")) +
                       Widget("QPushButton", "C",
                              Property("enabled", "<bool>true</bool>") +
                                  Property("visible", "<bool>true</bool>"))),
              (Lines{"QLabel A 'a <b> \xC3\xA4' () at 0 hidden",
                     "QComboBox B '' (x, , z) at -1 disabled", "QPushButton C '' () at 0"}));
}

TEST(DialogArchive, OtherPropertiesAndDeeperOnesSayNothing)
{
    EXPECT_EQ(Controls(Property("windowTitle", "<string>Title</string>") +
                       Property("visible", "<bool>false</bool>") +
                       Widget("QLabel", "A",
                              Property("toolTip", "<string>tip</string>") +
                                  Property("text", "<cstring>other kind</cstring>") +
                                  Property("font", "<font><bold>true</bold></font>") +
                                  "<attribute name=\"text\"><string>no</string></attribute>" +
                                  "<other>" + Property("visible", "<bool>false</bool>") +
                                  "</other>" + "<string>loose</string>")),
              Lines{"QLabel A '' () at 0"});
}

TEST(DialogArchive, ItemsOfALayoutAreNoItemsOfAPopup)
{
    EXPECT_EQ(Controls("<layout><item>" + Property("text", "<string>x</string>") + "</item>" +
                       "</layout>" +
                       Widget("QComboBox", "A", "<layout>" + Item("x") + "</layout>" + Item("y"))),
              Lines{"QComboBox A '' (y) at 0"});
}

TEST(DialogArchive, MayComeInOtherEncodings)
{
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n";
    const Archive archive(declaration + Form(Widget("QLabel", "A\xE4")));
    ASSERT_EQ(archive.mControls.size(), 1u);
    EXPECT_EQ(archive.mControls[0].mID, "A\xC3\xA4");
}

TEST(DialogArchive, WhatIsNoXMLIsToldWithItsLine)
{
    ExpectFault("", ArchiveFault::NotXML, "1");
    ExpectFault("no form", ArchiveFault::NotXML, "1");
    ExpectFault("<ui>\n<widget>\n", ArchiveFault::NotXML, "3");
    ExpectFault("<ui>\n<widget>\n</ui>", ArchiveFault::NotXML, "3");
    ExpectFault(Form("") + "\n\n<ui/>", ArchiveFault::NotXML, "3");
    ExpectFault(Form(Widget("QLabel", "\xFF")), ArchiveFault::NotXML, "1");
    ExpectFault(Form("&unknown;"), ArchiveFault::NotXML, "1");
    ExpectFault(std::string("\0\0\0\0", 4), ArchiveFault::NotXML, "1");
}

// A cut at any place is found; only the white space behind the form may go.
TEST(DialogArchive, NoPartOfAFormIsAForm)
{
    const std::string whole = Form(Widget("QComboBox", "A", Item("x")));
    for (std::size_t bytes = 0; bytes < whole.size(); ++bytes)
    {
        EXPECT_EQ(Archive(whole.substr(0, bytes)).mResult.mFault, ArchiveFault::NotXML) << bytes;
    }
}

TEST(DialogArchive, AnotherRootAndAFormWithoutAWidgetAreNoForm)
{
    ExpectFault("<html></html>", ArchiveFault::NotAForm);
    ExpectFault("<html/>", ArchiveFault::NotAForm);
    ExpectFault("<widget class=\"QDialog\"/>", ArchiveFault::NotAForm);
    ExpectFault("<ui/>", ArchiveFault::NotAForm);
    ExpectFault("<ui><class>A</class></ui>", ArchiveFault::NotAForm);
}

TEST(DialogArchive, AnIDIsThereOnce)
{
    ExpectFault(Form(Widget("QLabel", "A") + Widget("QComboBox", "A")), ArchiveFault::DuplicateID,
                "A");
    ExpectFault(Form(Widget("QFrame", "A", Widget("QLabel", "A"))), ArchiveFault::DuplicateID, "A");
}

TEST(DialogArchive, ValuesOfAnotherKindAreToldWithTheirLine)
{
    for (const char* value : {"<bool>yes</bool>", "<bool></bool>", "<bool> true</bool>",
                              "<number>1</number>", "<string>TRUE</string>"})
    {
        ExpectFault(Form("\n" + Widget("QLabel", "A", Property("enabled", value))),
                    ArchiveFault::BadValue, "2");
        ExpectFault(Form("\n" + Widget("QLabel", "A", Property("visible", value))),
                    ArchiveFault::BadValue, "2");
    }
    for (const char* value : {"<number>x</number>", "<number></number>", "<number>1.5</number>",
                              "<number>99999999999999999999</number>", "<bool>true</bool>"})
        ExpectFault(Form("\n\n" + Widget("QComboBox", "A", Property("currentIndex", value))),
                    ArchiveFault::BadValue, "3");
}

TEST(DialogArchive, DeclarationsAreRefused)
{
    ExpectFault("<!DOCTYPE ui>" + Form(""), ArchiveFault::TooLarge);
    ExpectFault("<!DOCTYPE ui [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" +
                    Form(Widget("QLabel", "&b;")),
                ArchiveFault::TooLarge);
}

TEST(DialogArchive, SizesHaveAnEnd)
{
    const auto padded = [](std::size_t inBytes)
    {
        const std::string form = Form("");
        return form + std::string(inBytes - form.size(), ' ');
    };
    EXPECT_EQ(Archive(padded(kMaxArchiveBytes)).mResult.mFault, ArchiveFault::None);
    ExpectFault(padded(kMaxArchiveBytes + 1), ArchiveFault::TooLarge);

    const auto nested = [](std::size_t inLevels)
    {
        std::string form;
        for (std::size_t i = 2; i < inLevels; ++i)  // within "ui" and "widget"
            form = "<layout>" + form + "</layout>";
        return Form(form);
    };
    EXPECT_EQ(Archive(nested(kMaxArchiveDepth)).mResult.mFault, ArchiveFault::None);
    ExpectFault(nested(kMaxArchiveDepth + 1), ArchiveFault::TooLarge);

    const auto many = [](std::size_t inControls)
    {
        std::string form;
        for (std::size_t i = 0; i < inControls; ++i)
            form += Widget("QLabel", std::to_string(i));
        return Form(form);
    };
    EXPECT_EQ(Archive(many(kMaxArchiveControls)).mControls.size(), kMaxArchiveControls);
    ExpectFault(many(kMaxArchiveControls + 1), ArchiveFault::TooLarge);

    const auto filled = [](std::size_t inItems)
    {
        std::string items;
        for (std::size_t i = 0; i < inItems; ++i)
            items += Item("");
        return Form(Widget("QComboBox", "A", items));
    };
    EXPECT_EQ(Archive(filled(kMaxArchiveItems)).mControls.at(0).mItems.size(), kMaxArchiveItems);
    ExpectFault(filled(kMaxArchiveItems + 1), ArchiveFault::TooLarge);
}
