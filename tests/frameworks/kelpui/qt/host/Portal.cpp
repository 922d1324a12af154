// A desktop's settings portal that knows one thing: portal NUMBER
//
// Answers the question for the colour scheme with the number, in variants as deep as the real
// one's, and refuses all others. Prints a line once it can be asked; ends with its bus.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <cstdio>

namespace
{

class Portal : public QDBusVirtualObject
{
public:
    explicit Portal(unsigned inScheme) : mScheme(inScheme) {}

    QString introspect(const QString&) const override { return QString(); }
    bool handleMessage(const QDBusMessage& inMessage, const QDBusConnection& inConnection) override
    {
        const QVariantList colorScheme = {QStringLiteral("org.freedesktop.appearance"),
                                          QStringLiteral("color-scheme")};
        if (inMessage.interface() != QLatin1String("org.freedesktop.portal.Settings") ||
            inMessage.member() != QLatin1String("Read") || inMessage.arguments() != colorScheme)
            return false;
        const QDBusVariant scheme{QVariant(mScheme)};
        return inConnection.send(
            inMessage.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(scheme)))));
    }

private:
    const unsigned mScheme;
};

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Portal portal(argc > 1 ? QString::fromLatin1(argv[1]).toUInt() : 0);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal) ||
        !bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        return 1;
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                &application, SLOT(quit()));
    std::printf("ready\n");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
