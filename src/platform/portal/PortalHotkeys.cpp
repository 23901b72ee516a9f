#include "platform/portal/PortalHotkeys.h"

#include "model/AppInfo.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTimer>

#include <utility>

namespace {

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString pasteId = QStringLiteral("paste");
const QString probeId = QStringLiteral("keys-up");
const QString dismissedKey = QStringLiteral("hotkeyDialogDismissed");

const QString notAnswered = QStringLiteral("the desktop has not answered yet");
const QString dismissed = QStringLiteral("the desktop was not allowed to give one");

/// Nobody reads a dialog and answers it in less.
constexpr std::chrono::milliseconds shortestAnswer{300};

/// A portal that fails again and again is left alone for longer each time, and in the end for good.
constexpr std::chrono::milliseconds firstPause{500};
constexpr std::chrono::minutes longestPause{5};

/// A combination as the portal writes it; empty for a key that has no letter or
/// digit, which the user then chooses.
QString triggerOf(const KeyCombo &combo) {
    static const QList<std::pair<quint32, QString>> modifiers{
        {HotkeyFormat::controlKey, QStringLiteral("CTRL")},
        {HotkeyFormat::optionKey, QStringLiteral("ALT")},
        {HotkeyFormat::shiftKey, QStringLiteral("SHIFT")},
        {HotkeyFormat::cmdKey, QStringLiteral("LOGO")},
    };
    const QString key = HotkeyFormat::keyCodeToString(combo.keyCode);
    if (key.size() != 1 || !key.at(0).isLetterOrNumber())
        return {};
    QStringList parts;
    for (const auto &[bit, name] : modifiers) {
        if (combo.modifiers & bit)
            parts.append(name);
    }
    parts.append(key.toLower());
    return parts.join(u'+');
}

PortalShortcut shortcut(const QString &id, const QString &description, const QString &trigger) {
    QVariantMap properties{{QStringLiteral("description"), description}};
    if (!trigger.isEmpty())
        properties[QStringLiteral("preferred_trigger")] = trigger;
    return {id, properties};
}

/// The words of the desktop for its keys. GNOME's are those of its settings, "Press <Control>v".
QString shownTrigger(const QString &description) {
    static const QRegularExpression accelerator(QStringLiteral("((?:<\\w+>)+)(\\w+)"));
    static const QList<std::pair<QString, QString>> modifiers{
        {QStringLiteral("<control>"), QStringLiteral("Ctrl")},
        {QStringLiteral("<primary>"), QStringLiteral("Ctrl")},
        {QStringLiteral("<alt>"), QStringLiteral("Alt")},
        {QStringLiteral("<shift>"), QStringLiteral("Shift")},
        {QStringLiteral("<super>"), QStringLiteral("Super")},
    };
    const auto found = accelerator.match(description);
    if (!found.hasMatch())
        return description;
    QStringList parts;
    for (const auto &[written, shown] : modifiers) {
        if (found.captured(1).contains(written, Qt::CaseInsensitive))
            parts.append(shown);
    }
    const QString key = found.captured(2);
    parts.append(key.size() == 1 ? key.toUpper() : key);
    return parts.join(u'+');
}

/// Where the desktop lets its user choose other keys.
std::function<void()> settingsPage() {
    const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    if (!desktops.contains(QStringLiteral("GNOME")))
        return {};
    return [] {
        QProcess::startDetached(QStringLiteral("gnome-control-center"),
                                {QStringLiteral("applications"), AppInfo::bundleIdentifier()});
    };
}

} // namespace

QString PortalHotkeys::interfaceName() {
    return QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
}

PortalHotkeys::PortalHotkeys(Tools tools)
    : m_tools(std::move(tools)), m_problem(notAnswered), m_pause(firstPause) {
    const auto listen = [this](const QString &signal, const char *slot) {
        m_tools.portal->listen(portalPath, interfaceName(), signal, this, slot);
    };
    listen(QStringLiteral("Activated"), SLOT(activated(QDBusMessage)));
    listen(QStringLiteral("Deactivated"), SLOT(deactivated(QDBusMessage)));
    listen(QStringLiteral("ShortcutsChanged"), SLOT(shortcutsChanged(QDBusMessage)));
    connect(m_tools.portal.get(), &PortalConnection::appeared, this, &PortalHotkeys::tryAgain);
}

void PortalHotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                         std::function<void()> released, Outcome outcome) {
    unbind();
    m_wanted = all;
    m_pressed = std::move(pressed);
    m_released = std::move(released);
    m_outcome = std::move(outcome);
    m_problem = notAnswered;
    m_pause = firstPause;
    if (m_tools.defaults->boolean(dismissedKey).value_or(false))
        refuse(dismissed);
    else
        askDesktop();
}

void PortalHotkeys::unbind() {
    m_wanted.clear();
    m_session.reset();
    notBound();
}

void PortalHotkeys::notBound() {
    m_isBound = false;
    m_tools.probe->isBound = false;
    m_tools.hold->release();
}

/// A session takes one Bind, so each has its own.
void PortalHotkeys::askDesktop() {
    if (m_wanted.isEmpty()) {
        tell({});
        return;
    }
    m_session = std::make_unique<PortalSession>(m_tools.portal, interfaceName());
    connect(m_session.get(), &PortalSession::ended, this, &PortalHotkeys::ended);
    m_session->create([this](const QString &problem) {
        if (problem.isEmpty())
            bindShortcuts();
        else
            refuse(problem);
    });
}

QList<PortalShortcut> PortalHotkeys::wantedShortcuts() const {
    QList<PortalShortcut> shortcuts;
    for (const KeyCombo &combo : m_wanted) {
        const QString id = shortcuts.isEmpty()
                               ? pasteId
                               : pasteId + QStringLiteral("-%1").arg(shortcuts.size() + 1);
        shortcuts.append(shortcut(id, QStringLiteral("Enrich & Paste"), triggerOf(combo)));
    }
    if (m_tools.probe->isWanted)
        shortcuts.append(shortcut(probeId, QStringLiteral("Notice when your keys are up"),
                                  QString::fromLatin1(KeyProbe::trigger)));
    return shortcuts;
}

void PortalHotkeys::bindShortcuts() {
    m_askedAt = HotkeyHold::Clock::now();
    const QString noParentWindow;
    m_session->ask(QStringLiteral("BindShortcuts"),
                   {PortalShortcuts::toArgument(wantedShortcuts()), noParentWindow}, {}, {},
                   [this](const PortalRequest::Answer &answer) { answered(answer); });
}

/// By the shortcuts in it, whatever its code says: GNOME answers with "ended" when all went well,
/// when the user has dismissed the dialog, and when it could show none.
void PortalHotkeys::answered(const PortalRequest::Answer &answer) {
    using Code = PortalRequest::Answer::Code;
    const auto shortcuts = PortalShortcuts::of(answer.results.value(QStringLiteral("shortcuts")));
    if (!shortcuts.isEmpty()) {
        m_boundAt = HotkeyHold::Clock::now();
        m_tools.defaults->remove(dismissedKey);
        takeOver(shortcuts);
    } else if (answer.code == Code::Failed) {
        refuse(answer.problem);
    } else if (!m_tools.portal->registrationProblem().isEmpty()) {
        refuse(QStringLiteral("the desktop does not know Brindle: ") +
               m_tools.portal->registrationProblem());
    } else if (answer.code == Code::Ended &&
               HotkeyHold::Clock::now() - m_askedAt < shortestAnswer) {
        refuse(QStringLiteral("the desktop gives none"));
    } else {
        m_tools.defaults->set(dismissedKey, true);
        refuse(dismissed);
    }
}

void PortalHotkeys::takeOver(const QList<PortalShortcut> &shortcuts) {
    QStringList triggers;
    for (const PortalShortcut &bound : shortcuts) {
        const QString trigger =
            shownTrigger(bound.properties.value(QStringLiteral("trigger_description")).toString());
        if (bound.id == probeId)
            m_tools.probe->isBound = true;
        else if (!trigger.isEmpty() && !triggers.contains(trigger))
            triggers.append(trigger);
    }
    m_isBound = true;
    m_problem.clear();
    m_trigger = triggers.join(QStringLiteral(", "));
    tell({});
}

void PortalHotkeys::tell(const QList<Refusal> &refusals) {
    if (const auto outcome = m_outcome) // a copy, since it may bind anew
        outcome(refusals);
}

void PortalHotkeys::refuse(const QString &problem) {
    if (m_session)
        m_session.release()->deleteLater(); // it may be the one that calls
    if (problem != dismissed)
        tryLater();
    if (problem == std::exchange(m_problem, problem))
        return; // known already
    QList<Refusal> refusals;
    for (const KeyCombo &combo : std::as_const(m_wanted))
        refusals.append({combo, QStringLiteral("can't be had: ") + problem});
    tell(refusals);
}

void PortalHotkeys::ended() {
    m_session.release()->deleteLater();
    notBound();
    if (HotkeyHold::Clock::now() - m_boundAt > longestPause)
        m_pause = firstPause;
    tryLater();
}

/// Right after login not everything is up that it takes.
void PortalHotkeys::tryLater() {
    if (m_pause > longestPause)
        return;
    QTimer::singleShot(m_pause, this, &PortalHotkeys::tryAgain);
    m_pause *= 2;
}

void PortalHotkeys::tryAgain() {
    if (!m_session && !m_wanted.isEmpty() && m_problem != dismissed)
        askDesktop();
}

std::optional<Hotkeys::DesktopsChoice> PortalHotkeys::desktopsChoice() const {
    if (m_problem == notAnswered)
        return DesktopsChoice{QStringLiteral("Waiting for the desktop to give Brindle its hotkey."),
                              {}};
    if (m_problem == dismissed)
        return DesktopsChoice{QStringLiteral("The desktop gives Brindle no hotkey, as you have "
                                             "dismissed its question."),
                              [self = QPointer(const_cast<PortalHotkeys *>(this))] {
                                  if (self)
                                      self->askDesktop();
                              },
                              {},
                              QStringLiteral("Ask for a Hotkey")};
    if (!m_problem.isEmpty())
        return std::nullopt;
    if (m_trigger.isEmpty() && m_tools.untold)
        return m_tools.untold;
    return DesktopsChoice{m_trigger, settingsPage(), {}, {}};
}

QString PortalHotkeys::shortcutOf(const QDBusMessage &signal) const {
    const auto session = signal.arguments().value(0).value<QDBusObjectPath>();
    return m_session && m_session->path() == session.path() ? signal.arguments().value(1).toString()
                                                            : QString();
}

void PortalHotkeys::activated(const QDBusMessage &signal) {
    const QString id = shortcutOf(signal);
    if (id == probeId && m_tools.probe->fired)
        m_tools.probe->fired();
    if (!id.startsWith(pasteId) || !m_tools.hold->press())
        return;
    if (const auto pressed = m_pressed) // a copy, since it may bind anew
        pressed();
}

void PortalHotkeys::deactivated(const QDBusMessage &signal) {
    if (!shortcutOf(signal).startsWith(pasteId) || !m_tools.hold->release())
        return;
    if (const auto released = m_released)
        released();
}

void PortalHotkeys::shortcutsChanged(const QDBusMessage &signal) {
    const auto session = signal.arguments().value(0).value<QDBusObjectPath>();
    if (m_isBound && m_session && m_session->path() == session.path())
        takeOver(PortalShortcuts::of(signal.arguments().value(1)));
}
