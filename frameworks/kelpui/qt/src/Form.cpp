#include "Form.h"

#include "QtText.h"

#include <kelpcore/ZString.h>
#include <kelpcore/utility/StringConversion.h>

#include <QBuffer>
#include <QMetaProperty>
#include <QUiLoader>

#include <algorithm>

namespace kelpui::qt
{
namespace
{

// A form is data: it gets widgets of Qt, and no plug-in is loaded for it.
class FormLoader final : public QUiLoader
{
public:
    FormLoader() { clearPluginPaths(); }

    // The window is one of ours, which knows what closing means to a dialog.
    QWidget* createWidget(const QString& inClass, QWidget* inParent, const QString& inName) override
    {
        if (inParent || inClass != QLatin1String("QDialog"))
            return QUiLoader::createWidget(inClass, inParent, inName);
        auto* const window = new DialogWindow;
        window->setObjectName(inName);
        return window;
    }
};

// Whatever texts a widget has, the one for screen readers too. Items are their control's.
void Translate(QObject& ioObject)
{
    const QMetaObject& properties = *ioObject.metaObject();
    for (int i = 0; i < properties.propertyCount(); ++i)
    {
        const QMetaProperty property = properties.property(i);
        if (property.metaType().id() != QMetaType::QString || !property.isWritable())
            continue;
        const QString text = property.read(&ioObject).toString();
        if (text.startsWith(QLatin1String("$$$/")))
            property.write(&ioObject, ToQt(ui::TranslateArchiveText(FromQt(text))));
    }
}

}  // namespace

std::unique_ptr<DialogWindow> LoadForm(const ui::UI_ArchivedDialog& inDialog)
{
    QByteArray bytes(inDialog.GetArchive().data(),
                     static_cast<qsizetype>(inDialog.GetArchive().size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    std::unique_ptr<QWidget> form(FormLoader().load(&buffer));
    auto* const window = dynamic_cast<DialogWindow*>(form.get());
    if (!window || !window->layout())
        ThrowNoForm(inDialog);
    (void)form.release();
    std::unique_ptr<DialogWindow> owned(window);
    Translate(*owned);
    for (QWidget* widget : owned->findChildren<QWidget*>())
        Translate(*widget);
    return owned;
}

void ThrowNoForm(const ui::UI_ArchivedDialog& inDialog)
{
    throw ui::DialogArchiveError(kelpcore::utility::UTF16to8(kelpcore::ZString(
        "$$$/kelpui/ArchivedDialog/NotAForm=The dialog \"@0\" is no form.", inDialog.GetTitle())));
}

}  // namespace kelpui::qt
