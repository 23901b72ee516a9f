#include "platform/wayland/SwayHotkeys.h"

#include "platform/linux/KeyCodes.h"
#include "platform/wayland/SwayConfiguration.h"

#include <QJsonArray>
#include <QStringList>

#include <utility>

namespace {

// What sway is told to do at a press and at a release: nothing, and to say so.
const QString pressCommand = QStringLiteral("nop brindle press");
const QString releaseCommand = QStringLiteral("nop brindle release");

/// "Ctrl+Mod1+Mod4+55"; empty for a combination that is on no key.
QString combination(const KeyCombo &combo) {
    static const QList<std::pair<quint32, QString>> modifiers{
        {HotkeyFormat::controlKey, QStringLiteral("Ctrl")},
        {HotkeyFormat::optionKey, QStringLiteral("Mod1")},
        {HotkeyFormat::shiftKey, QStringLiteral("Shift")},
        {HotkeyFormat::cmdKey, QStringLiteral("Mod4")},
    };
    QStringList parts;
    for (const auto &[bit, name] : modifiers) {
        if (combo.modifiers & bit)
            parts.append(name);
    }
    const auto key = KeyCodes::x11FromVirtual(combo.keyCode);
    if (!key || parts.isEmpty())
        return {};
    parts.append(QString::number(*key));
    return parts.join(u'+');
}

} // namespace

SwayHotkeys::SwayHotkeys()
    : m_sway(
          [this](SwayConnection::Event event, const QJsonObject &what) { happened(event, what); }) {
    if (!m_sway.problem().isEmpty())
        return;
    m_sway.send(SwayConnection::Request::Subscribe, R"(["binding","workspace"])",
                [](const QJsonValue &) {});
}

SwayHotkeys::~SwayHotkeys() {
    unbind();
    m_sway.finish();
}

void SwayHotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                       std::function<void()> released, Outcome outcome) {
    unbind();
    m_wanted = all;
    m_pressed = std::move(pressed);
    m_released = std::move(released);
    m_outcome = std::move(outcome);
    bindAll(m_outcome);
}

void SwayHotkeys::unbind() {
    ++m_generation;
    m_wanted.clear();
    m_hold.release();
    if (m_bound.isEmpty())
        return;
    m_sway.send(SwayConnection::Request::RunCommand,
                QStringLiteral("unbindcode ").toUtf8() +
                    std::exchange(m_bound, {}).join(QStringLiteral("; unbindcode ")).toUtf8(),
                [](const QJsonValue &) {});
}

/// A key that is bound already is replaced without a word, so sway is asked for the configuration
/// first.
void SwayHotkeys::bindAll(const Outcome &outcome) {
    if (m_wanted.isEmpty()) {
        outcome({});
        return;
    }
    m_sway.send(SwayConnection::Request::GetConfiguration, {},
                [this, outcome, generation = m_generation](const QJsonValue &answer) {
                    if (generation == m_generation)
                        bindUntaken(answer[QStringLiteral("config")].toString(), outcome);
                });
}

void SwayHotkeys::bindUntaken(const QString &configuration, const Outcome &outcome) {
    const SwayConfiguration users(configuration);
    QList<Refusal> refusals;
    QList<KeyCombo> asked;
    QStringList commands;
    m_bound.clear();
    for (const KeyCombo &combo : std::as_const(m_wanted)) {
        const QString keys = combination(combo);
        if (keys.isEmpty()) {
            refusals.append({combo, QStringLiteral("is on no key of this keyboard")});
        } else if (users.binds(combo)) {
            refusals.append({combo, QStringLiteral("is taken by the configuration of sway")});
        } else {
            asked.append(combo);
            m_bound << keys << QStringLiteral("--release ") + keys;
            commands << QStringLiteral("bindcode %1 %2").arg(keys, pressCommand)
                     << QStringLiteral("bindcode --release %1 %2").arg(keys, releaseCommand);
        }
    }
    if (commands.isEmpty()) {
        outcome(refusals);
        return;
    }
    m_sway.send(SwayConnection::Request::RunCommand, commands.join(QStringLiteral("; ")).toUtf8(),
                [=, generation = m_generation, this](const QJsonValue &answer) mutable {
                    if (generation != m_generation)
                        return;
                    for (qsizetype i = 0; i < asked.size(); ++i) {
                        const QJsonValue press = answer[2 * i];
                        if (!press[QStringLiteral("success")].toBool())
                            refusals.append(
                                {asked[i], QStringLiteral("was refused by sway: ") +
                                               press[QStringLiteral("error")].toString()});
                    }
                    outcome(refusals);
                });
}

std::optional<quint32> SwayHotkeys::virtualKey(quint32 nativeScanCode) const {
    return KeyCodes::virtualFromX11(nativeScanCode); // the toolkit counts as X does
}

void SwayHotkeys::happened(SwayConnection::Event event, const QJsonObject &what) {
    if (event == SwayConnection::Event::Binding) {
        const QString command =
            what[QStringLiteral("binding")].toObject()[QStringLiteral("command")].toString();
        if (command == pressCommand)
            keyPressed();
        else if (command == releaseCommand)
            keyReleased();
    } else if (what[QStringLiteral("change")].toString() == QLatin1String("reload")) {
        // All bindings but those of the configuration are gone.
        m_bound.clear();
        bindAll([outcome = m_outcome](const QList<Refusal> &refusals) {
            if (!refusals.isEmpty())
                outcome(refusals);
        });
    }
}

void SwayHotkeys::keyPressed() {
    if (!m_hold.press())
        return;
    if (const auto pressed = m_pressed) // a copy, since it may bind anew
        pressed();
}

void SwayHotkeys::keyReleased() {
    if (!m_hold.release())
        return;
    if (const auto released = m_released)
        released();
}
