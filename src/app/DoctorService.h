#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>

/// What `brindle doctor` asks the running instance, whose hotkeys and permissions are those that
/// count. On the bus object of its parent. Main thread only.
class DoctorService : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ostrowind.brindle.Doctor")

public:
    explicit DoctorService(QObject *parent) : QDBusAbstractAdaptor(parent) {}

public Q_SLOTS:
    /// Answers when all is examined: whether links can be pasted, and the report.
    void Examine(bool network, const QDBusMessage &call);
};
