// DialogArchiveFile: the file that the dialog's archive is read from, in place of the bundle's.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_DIALOGARCHIVEFILE_H
#define TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_DIALOGARCHIVEFILE_H

#include <string>

namespace testing_support
{

/// The form as it is among the sources.
std::string FormText();

/// Bundles have this text as their one resource until an object ends, and none from then on.
class DialogArchiveFile
{
public:
    explicit DialogArchiveFile(const std::string& inText);
    ~DialogArchiveFile();
    DialogArchiveFile(const DialogArchiveFile&) = delete;
    DialogArchiveFile& operator=(const DialogArchiveFile&) = delete;

private:
    std::string mPath;
};

}  // namespace testing_support

#endif
