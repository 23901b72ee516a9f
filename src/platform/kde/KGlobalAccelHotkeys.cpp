#include "platform/kde/KGlobalAccelHotkeys.h"

#include "platform/kde/QtKeys.h"
#include "platform/linux/BusNames.h"
#include "platform/linux/KeyCodes.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

#include <algorithm>

namespace {

const QString service = QStringLiteral("org.kde.kglobalaccel");
const QString path = QStringLiteral("/kglobalaccel");
const QString interface = QStringLiteral("org.kde.KGlobalAccel");
const QString componentInterface = QStringLiteral("org.kde.kglobalaccel.Component");

const QString component = QStringLiteral("org.ostrowind.brindle");

/// The key is in force, and the one asked for, not the one of last time.
constexpr uint setPresent = 2;
constexpr uint noAutoloading = 4;

QString actionOf(const KeyCombo &combo) {
    return QStringLiteral("paste-%1-%2").arg(combo.keyCode).arg(combo.modifiers);
}

/// An action as the service's calls want it: two names, and the two that System Settings shows.
QStringList idOf(const KeyCombo &combo) {
    return {component, actionOf(combo), QStringLiteral("Brindle"),
            QStringLiteral("Enrich & Paste")};
}

/// The first of the shortcuts in an answer, as "Action (Program)"; empty when there is none.
QString firstHolder(const QDBusMessage &answer) {
    const QVariant value = answer.arguments().value(0);
    if (!value.canConvert<QDBusArgument>())
        return {};
    const auto shortcuts = value.value<QDBusArgument>();
    QString holder;
    shortcuts.beginArray();
    if (!shortcuts.atEnd()) {
        QString actionName, action, programName, program;
        shortcuts.beginStructure();
        shortcuts >> actionName >> action >> programName >> program;
        holder = QStringLiteral("“%1” of %2").arg(action, program);
    }
    return holder;
}

} // namespace

QString KGlobalAccelHotkeys::problem(const QDBusConnection &bus) {
    // Elsewhere it may run for some program of KDE's, and grabs nothing or too much.
    if (!qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("KDE")))
        return QStringLiteral("the desktop is not Plasma");
    if (!BusNames::isThereOrStartable(bus, service))
        return QStringLiteral("%1 is not on the bus").arg(service);
    return {};
}

KGlobalAccelHotkeys::KGlobalAccelHotkeys(const QDBusConnection &bus) : m_bus(bus) {
    const auto listen = [this](const QString &signal, const char *slot) {
        m_bus.connect(service, {}, componentInterface, signal, {component}, {}, this, slot);
    };
    listen(QStringLiteral("globalShortcutPressed"), SLOT(keyPressed()));
    listen(QStringLiteral("globalShortcutReleased"), SLOT(keyReleased()));
    const auto *watcher =
        new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &KGlobalAccelHotkeys::restarted);
}

KGlobalAccelHotkeys::~KGlobalAccelHotkeys() {
    unbind();
}

/// For what needs no answer.
void KGlobalAccelHotkeys::tell(const QString &method, const QVariantList &arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    m_bus.send(message);
}

void KGlobalAccelHotkeys::call(const QString &method, const QVariantList &arguments,
                               Answered answered) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, answered = std::move(answered), generation = m_generation, this] {
                watcher->deleteLater();
                if (generation == m_generation)
                    answered(watcher->reply());
            });
}

void KGlobalAccelHotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                               std::function<void()> released, Outcome outcome) {
    unbind();
    const QList<KeyCombo> known = m_known;
    for (const KeyCombo &combo : known) {
        if (!all.contains(combo))
            forget(combo);
    }
    m_wanted = all;
    m_pressed = std::move(pressed);
    m_released = std::move(released);
    m_outcome = std::move(outcome);
    bindAll(m_outcome);
}

/// The service keeps the keys, so that nobody else gets them, and lets them through.
void KGlobalAccelHotkeys::unbind() {
    ++m_generation;
    m_wanted.clear();
    m_hold->release();
    for (const KeyCombo &combo : std::as_const(m_known))
        tell(QStringLiteral("setInactive"), {idOf(combo)});
}

void KGlobalAccelHotkeys::forget(const KeyCombo &combo) {
    m_known.removeAll(combo);
    tell(QStringLiteral("unregister"), {component, actionOf(combo)});
}

void KGlobalAccelHotkeys::bindAll(const Outcome &outcome) {
    struct Round {
        QList<Refusal> refusals;
        qsizetype outstanding;
    };
    if (m_wanted.isEmpty()) {
        outcome({});
        return;
    }
    const auto round = std::make_shared<Round>(Round{{}, m_wanted.size()});
    const QList<KeyCombo> wanted = m_wanted;
    for (const KeyCombo &combo : wanted) {
        bindOne(combo, [round, combo, outcome](const QString &refusal) {
            if (!refusal.isEmpty())
                round->refusals.append({combo, refusal});
            if (--round->outstanding == 0)
                outcome(round->refusals);
        });
    }
}

void KGlobalAccelHotkeys::bindOne(const KeyCombo &combo, const Bound &done) {
    const QList<int> keys = QtKeys::of(combo);
    if (keys.isEmpty()) {
        done(QStringLiteral("is on no key that KDE's shortcuts know"));
        return;
    }
    if (!m_known.contains(combo))
        m_known.append(combo);
    tell(QStringLiteral("doRegister"), {idOf(combo)});
    call(QStringLiteral("setShortcut"),
         {idOf(combo), QVariant::fromValue(keys), setPresent | noAutoloading},
         [this, combo, keys, done](const QDBusMessage &answer) {
             const auto inForce = qdbus_cast<QList<int>>(answer.arguments().value(0));
             const auto refused = std::find_if_not(keys.begin(), keys.end(),
                                                   [&](int key) { return inForce.contains(key); });
             if (answer.type() == QDBusMessage::ErrorMessage) {
                 done(QStringLiteral("was refused by KDE's shortcuts: ") + answer.errorMessage());
             } else if (refused == keys.end()) {
                 done({});
             } else {
                 forget(combo);
                 call(QStringLiteral("getGlobalShortcutsByKey"), {*refused},
                      [done](const QDBusMessage &shortcuts) {
                          const QString holder = firstHolder(shortcuts);
                          done(QStringLiteral("is taken by ") +
                               (holder.isEmpty() ? QStringLiteral("another program") : holder));
                      });
             }
         });
}

void KGlobalAccelHotkeys::restarted() {
    ++m_generation;
    m_hold->release();
    if (!m_wanted.isEmpty())
        bindAll(m_outcome);
}

std::optional<quint32> KGlobalAccelHotkeys::virtualKey(quint32 nativeScanCode) const {
    const auto key = KeyCodes::virtualFromX11(nativeScanCode); // the toolkit counts as X does
    return key && !QtKeys::of({*key, 0}).isEmpty() ? key : std::nullopt;
}

void KGlobalAccelHotkeys::keyPressed() {
    if (!m_hold->press())
        return;
    if (const auto pressed = m_pressed) // a copy, since it may bind anew
        pressed();
}

void KGlobalAccelHotkeys::keyReleased() {
    if (!m_hold->release())
        return;
    if (const auto released = m_released)
        released();
}
