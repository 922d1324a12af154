// QtText: texts and names between kelpui and Qt.
#ifndef KELPUIQT_QTTEXT_H
#define KELPUIQT_QTTEXT_H

#include <kelpcore/Strings.h>

#include <QString>

namespace kelpui::qt
{

inline QString ToQt(const UTF16String& inText)
{
    return QString::fromUtf16(inText.data(), static_cast<qsizetype>(inText.size()));
}

inline QString ToQt(const UTF8String& inText)
{
    return QString::fromUtf8(inText.data(), static_cast<qsizetype>(inText.size()));
}

inline UTF8String FromQt(const QString& inText)
{
    const QByteArray bytes = inText.toUtf8();
    return UTF8String(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

}  // namespace kelpui::qt

#endif
