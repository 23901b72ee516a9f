#include "stage/StatusArea.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QEventLoop>
#include <QtEndian>

namespace {

constexpr auto watcherPath = "/StatusNotifierWatcher";
constexpr auto watcherName = "org.kde.StatusNotifierWatcher";
constexpr auto menuInterface = "com.canonical.dbusmenu";

} // namespace

StatusArea::StatusArea(const QDBusConnection &bus) : m_bus(bus) {
    m_isThere = m_bus.registerObject(watcherPath, this,
                                     QDBusConnection::ExportAllProperties |
                                         QDBusConnection::ExportAllSlots |
                                         QDBusConnection::ExportAllSignals) &&
                m_bus.registerService(watcherName);
}

StatusArea::~StatusArea() {
    m_bus.unregisterService(watcherName);
    m_bus.unregisterObject(watcherPath);
}

void StatusArea::RegisterStatusNotifierItem(const QString &service) {
    m_items.append(service);
    Q_EMIT StatusNotifierItemRegistered(service);
}

QVariant StatusArea::ask(const QString &path, const QString &interface, const QString &method,
                         const QVariantList &arguments) const {
    if (m_items.isEmpty())
        return {};
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_items.constLast(), path, interface, method);
    call.setArguments(arguments);
    // The program may be asking us something meanwhile; block only the caller, not the event loop.
    const QDBusMessage reply = m_bus.call(call, QDBus::BlockWithGui, 15000);
    return reply.arguments().value(reply.arguments().size() - 1);
}

QVariant StatusArea::property(const QString &name) const {
    const QVariant value = ask("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                               {"org.kde.StatusNotifierItem", name});
    return value.value<QDBusVariant>().variant();
}

QImage StatusArea::picture() const {
    QImage largest;
    const auto pictures = property("IconPixmap").value<QDBusArgument>();
    if (pictures.currentType() != QDBusArgument::ArrayType)
        return largest;
    pictures.beginArray();
    while (!pictures.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        pictures.beginStructure();
        pictures >> width >> height >> bytes;
        pictures.endStructure();
        if (width <= largest.width() || bytes.size() != qsizetype{4} * width * height)
            continue;
        largest = QImage(width, height, QImage::Format_ARGB32);
        for (int i = 0; i < width * height; ++i)
            largest.setPixel(i % width, i / width,
                             qFromBigEndian<quint32>(bytes.constData() + qsizetype{4} * i));
    }
    pictures.endArray();
    return largest;
}

QString StatusArea::toolTip() const {
    const auto parts = property("ToolTip").value<QDBusArgument>();
    if (parts.currentType() != QDBusArgument::StructureType)
        return {};
    QString icon, title, text;
    parts.beginStructure();
    parts >> icon;
    parts.beginArray(); // its pictures
    while (!parts.atEnd())
        parts.asVariant();
    parts.endArray();
    parts >> title >> text;
    parts.endStructure();
    return title;
}

QList<StatusArea::Entry> StatusArea::entries() const {
    QList<Entry> found;
    const QString path = property("Menu").value<QDBusObjectPath>().path();
    const QVariant layout = ask(path, menuInterface, "GetLayout", {0, -1, QStringList()});
    if (!layout.isValid())
        return found;
    const auto root = layout.value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const auto entry = child.variant().value<QDBusArgument>();
        entry.beginStructure();
        entry >> id >> properties;
        entry.endStructure();
        if (!properties.value("visible", true).toBool())
            continue;
        const bool isSeparator = properties.value("type") == "separator";
        // Underscores mark keys; a doubled one is an underscore.
        QString title = properties.value("label").toString();
        title.remove('_');
        found.append({id, isSeparator ? "-" : title});
    }
    root.endArray();
    root.endStructure();
    return found;
}

QStringList StatusArea::menu() const {
    QStringList titles;
    for (const Entry &entry : entries())
        titles.append(entry.title);
    return titles;
}

bool StatusArea::click() const {
    if (m_items.isEmpty())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(m_items.constLast(), "/StatusNotifierItem",
                                                       "org.kde.StatusNotifierItem", "Activate");
    call.setArguments({0, 0});
    return m_bus.call(call, QDBus::BlockWithGui, 15000).type() == QDBusMessage::ReplyMessage;
}

bool StatusArea::choose(const QString &title) const {
    for (const Entry &entry : entries()) {
        if (entry.title != title)
            continue;
        ask(property("Menu").value<QDBusObjectPath>().path(), menuInterface, "Event",
            {entry.id, "clicked", QVariant::fromValue(QDBusVariant(QString())), 0U});
        return true;
    }
    return false;
}
