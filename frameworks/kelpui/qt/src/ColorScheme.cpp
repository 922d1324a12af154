#include "ColorScheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>

namespace kelpui::qt
{
namespace
{

// A dialog does not wait long for its colours.
constexpr int kMostMilliseconds = 300;

// Empty without a bus. None is launched, which libraries otherwise do.
QString BusAddress()
{
    if (const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
        !address.isEmpty())
        return address;
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/bus");
    return QFile::exists(socket) ? QLatin1String("unix:path=") + socket : QString();
}

// A connection of its own ends with the question.
class Bus
{
public:
    explicit Bus(const QString& inAddress)
        : mConnection(QDBusConnection::connectToBus(inAddress, Name()))
    {
    }
    ~Bus() { QDBusConnection::disconnectFromBus(Name()); }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    QDBusMessage Call(const QDBusMessage& inMessage) const
    {
        return mConnection.call(inMessage, QDBus::Block, kMostMilliseconds);
    }

private:
    static QString Name() { return QStringLiteral("kelpui-color-scheme"); }

    const QDBusConnection mConnection;
};

QVariant Unwrap(QVariant inValue)
{
    while (inValue.metaType() == QMetaType::fromType<QDBusVariant>())
        inValue = inValue.value<QDBusVariant>().variant();
    return inValue;
}

}  // namespace

ColorScheme QueryColorScheme()
{
    const QString address = BusAddress();
    if (address.isEmpty())
        return ColorScheme::NoWish;
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    question << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
    question.setAutoStartService(false);
    const QDBusMessage answer = Bus(address).Call(question);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return ColorScheme::NoWish;
    switch (Unwrap(answer.arguments().constFirst()).toUInt())
    {
        case 1:
            return ColorScheme::Dark;
        case 2:
            return ColorScheme::Light;
        default:
            return ColorScheme::NoWish;
    }
}

}  // namespace kelpui::qt
