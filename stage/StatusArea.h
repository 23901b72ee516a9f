#pragma once

#include <QDBusConnection>
#include <QImage>
#include <QObject>
#include <QStringList>
#include <QVariant>

/// The status area of a desktop, as programs see it on the session bus: takes the icons, looks at
/// the first one's properties and uses its menu. Belongs to the main thread, in whose event loop it
/// answers.
class StatusArea : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ version)

public:
    /// Takes its place on that bus; isThere() tells whether it got it.
    explicit StatusArea(const QDBusConnection &bus);
    /// Leaves the bus, as a panel that ends.
    ~StatusArea() override;

    bool isThere() const { return m_isThere; }
    QStringList items() const { return m_items; }
    bool hasHost() const { return true; }
    int version() const { return 0; }

    /// A property of the first icon; invalid when there is none.
    QVariant property(const QString &name) const;
    /// The largest picture of the first icon; null when there is none.
    QImage picture() const;
    /// The title of its tooltip.
    QString toolTip() const;
    /// The titles of its menu, "-" for a separator, with the marks of keys in them resolved.
    QStringList menu() const;
    /// A click with the left button on the first icon; false when it takes none.
    bool click() const;
    /// Chooses the entry with that title; false when there is none.
    bool choose(const QString &title) const;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);
    void RegisterStatusNotifierHost(const QString &) {}

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString &service);
    void StatusNotifierItemUnregistered(const QString &service);
    void StatusNotifierHostRegistered();

private:
    struct Entry {
        int id = 0;
        QString title;
    };
    QList<Entry> entries() const;
    QVariant ask(const QString &path, const QString &interface, const QString &method,
                 const QVariantList &arguments) const;

    QDBusConnection m_bus;
    bool m_isThere = false;
    QStringList m_items;
};
