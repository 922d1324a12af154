// The built plug-in in the languages of its bundle.
#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/DialogWindow.h"

#include <CoreFoundation/CoreFoundation.h>
#include <kelpcore/config/Localizer.h>
#include <kelpcore/utility/AutoCFRef.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>

namespace
{

using namespace testing_support;
using kelpcore::config::Localizer;
using Lines = std::vector<std::string>;

// bin/ and lib/ lie beside each other.
std::filesystem::path Contents()
{
    return std::filesystem::canonical("/proc/self/exe").parent_path().parent_path() /
           "lib/TarvoAT.bundle/Contents";
}

std::string ToUTF8(const UTF16String& inText)
{
    return std::string(kelpcore::utility::UTF16to8(inText));
}

// Asks for the AAC filter's settings.
class AACFormat : public RecordingFormat
{
public:
    explicit AACFormat(CallLog& outLog) : RecordingFormat(outLog)
    {
        mSampleRate = 44100;
        mSampleType = 20;
        mChannelCount = 2;
    }
    const uint16* GetFilterId() const override { return u"1633973363"; }
};

class BundleLanguages : public testing::Test
{
protected:
    BundleLanguages()
    {
        // The library stays loaded.
        void* const plugIn = dlopen((Contents() / "Linux/TarvoAT.so").c_str(), RTLD_LAZY);
        if (plugIn)
            mEntry = reinterpret_cast<TarvoInterfaceFunction>(dlsym(plugIn, "TarvoInterface"));
    }
    ~BundleLanguages() override { Localizer::Get().Clear(); }
    void SetUp() override { ASSERT_NE(mEntry, nullptr) << dlerror(); }

    static void Speak(const std::string& inLanguage)
    {
        const auto dictionary =
            Contents() / "Resources" / (inLanguage + ".lproj") / "Localizable.dictionary";
        ASSERT_TRUE(Localizer::Get().LoadDictionary(dictionary.c_str())) << dictionary;
    }
    // What a host is told of a file that is not there.
    std::string OpeningFailure()
    {
        RecordingErrors errors(mLog);
        RecordingOpen open(mLog);
        open.mErrors = &errors;
        open.mPath = "/no/such/folder/a.wav";
        EXPECT_LT(mEntry(5, nullptr, &open), 0);
        return ToUTF8(errors.mText.c_str());
    }
    // What the dialog of the AAC filter reads, first as it opens, then in variable mode.
    Lines DialogTexts()
    {
        RecordingInfo info(mLog);
        EXPECT_EQ(mEntry(0, nullptr, &info), 0);
        AACFormat format(mLog);
        RecordingExportDialog host(mLog);
        host.mFormat = &format;
        Lines lines;
        const ScriptedPresenter presenter(
            [&](const DialogWindow& window)
            {
            lines = {ToUTF8(window.Dialog().GetTitle()),
                     Text(window, "FileTypeStaticTextID"),
                     Text(window, "FormatTypeStaticTextID"),
                     Text(window, "EncodingStaticTextID"),
                     Text(window, "BitrateStaticTextID"),
                     window.Line("BitrateMode"),
                     window.Line("VBRQuality"),
                     ToUTF8(window.Popup("Bitrate").GetItems().at(0))};
            window.Choose("BitrateMode", 2);
            lines.push_back(Text(window, "BitrateStaticTextID"));
        });
        EXPECT_EQ(mEntry(15, nullptr, &host), 0);
        return lines;
    }
    static std::string Text(const DialogWindow& inWindow, const char* inID)
    {
        return ToUTF8(inWindow.Dialog().GetTypedControlForID<UI_StaticText>(inID)->GetValue());
    }
    // The file that the platform's bundles choose by the user's languages; empty for none.
    static std::string DictionaryFor(const char* inLanguages, const char* inLocale)
    {
        setenv("LANGUAGE", inLanguages, 1);
        setenv("LC_ALL", inLocale, 1);
        const kelpcore::utility::AutoCFRef<CFStringRef> identifier(
            CFStringCreateWithCString(nullptr, "com.verlo.TarvoAT.bundle", kCFStringEncodingUTF8));
        const kelpcore::utility::AutoCFRef<CFStringRef> name(
            CFStringCreateWithCString(nullptr, "Localizable", kCFStringEncodingUTF8));
        const kelpcore::utility::AutoCFRef<CFStringRef> type(
            CFStringCreateWithCString(nullptr, "dictionary", kCFStringEncodingUTF8));
        const kelpcore::utility::AutoCFRef<CFURLRef> file(CFBundleCopyResourceURL(
            CFBundleGetBundleWithIdentifier(identifier.Get()), name.Get(), type.Get(), nullptr));
        UInt8 path[PATH_MAX];
        if (!file || !CFURLGetFileSystemRepresentation(file.Get(), true, path, sizeof path))
            return std::string();
        return std::filesystem::path(reinterpret_cast<const char*>(path)).parent_path().filename();
    }

    TarvoInterfaceFunction mEntry = nullptr;
    CallLog mLog;
};

TEST_F(BundleLanguages, EnglishIsSpokenWithoutADictionary)
{
    EXPECT_EQ(OpeningFailure(),
              "Apple AudioToolbox cannot open the specified file.\nError Code: -43");
    EXPECT_EQ(
        DialogTexts(),
        (Lines{"Apple Audio Toolbox Settings", "File Type:", "Format:", "Encoding:", "Bitrate:",
               "BitrateMode: *Constant Bitrate | Long-Term Average Bitrate | Variable "
               "Bitrate",
               "VBRQuality: Maximum | *High | Medium | Low | Minimum hidden", "28 kbps",
               "VBR Quality:"}));
}

TEST_F(BundleLanguages, GermanIsSpokenWithItsDictionary)
{
    Speak("de");
    EXPECT_EQ(OpeningFailure(),
              "Apple AudioToolbox kann die angegebene Datei nicht öffnen.\nFehlercode: -43");
    EXPECT_EQ(DialogTexts(),
              (Lines{"Einstellungen für Apple Audio Toolbox",
                     "Dateityp:", "Format:", "Codierung:", "Bitrate:",
                     "BitrateMode: *Konstante Bitrate | Durchschnittliche Bitrate (langfristig) | "
                     "Variable Bitrate",
                     "VBRQuality: Maximal | *Hoch | Mittel | Niedrig | Minimal hidden", "28 kbit/s",
                     "VBR-Qualität:"}));
}

TEST_F(BundleLanguages, JapaneseIsSpokenWithItsDictionary)
{
    Speak("ja");
    EXPECT_EQ(OpeningFailure(),
              "Apple AudioToolbox は、指定されたファイルを開けません。\nエラーコード: -43");
    EXPECT_EQ(DialogTexts(),
              (Lines{"Apple Audio Toolbox の設定",
                     "ファイルタイプ:", "フォーマット:", "エンコード方式:", "ビットレート:",
                     "BitrateMode: *固定ビットレート | 長期平均ビットレート | 可変ビットレート",
                     "VBRQuality: 最高 | *高 | 中 | 低 | 最低 hidden", "28 kbps", "VBR の品質:"}));
}

TEST_F(BundleLanguages, TheUsersFirstLanguageWithADictionaryIsChosen)
{
    EXPECT_EQ(DictionaryFor("", "de_DE.UTF-8"), "de.lproj");
    EXPECT_EQ(DictionaryFor("", "de_AT@euro"), "de.lproj");
    EXPECT_EQ(DictionaryFor("", "ja_JP.eucJP"), "ja.lproj");
    EXPECT_EQ(DictionaryFor("fr:ja:de", "de_DE.UTF-8"), "ja.lproj");
    EXPECT_EQ(DictionaryFor("en_GB:de", "de_DE.UTF-8"), "en.lproj");
    EXPECT_EQ(DictionaryFor("", "fr_FR.UTF-8"), "");
    EXPECT_EQ(DictionaryFor("", "C"), "");
}

}  // namespace
