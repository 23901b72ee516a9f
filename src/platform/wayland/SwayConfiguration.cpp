#include "platform/wayland/SwayConfiguration.h"

#include "platform/linux/KeyCodes.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace {

struct Modifier {
    const char *name;
    quint32 bit;
};

/// No modifier of hotkeys; one with it is none of theirs.
constexpr quint32 otherModifier = 0x80000000;

constexpr Modifier modifiers[] = {
    {"shift", HotkeyFormat::shiftKey},
    {"ctrl", HotkeyFormat::controlKey},
    {"control", HotkeyFormat::controlKey},
    {"mod1", HotkeyFormat::optionKey},
    {"alt", HotkeyFormat::optionKey},
    {"mod4", HotkeyFormat::cmdKey},
    {"super", HotkeyFormat::cmdKey},
    {"logo", HotkeyFormat::cmdKey},
    {"lock", otherModifier},
    {"caps", otherModifier},
    {"mod2", otherModifier},
    {"mod3", otherModifier},
    {"mod5", otherModifier},
};

quint32 modifierBit(const QString &name) {
    for (const Modifier &modifier : modifiers) {
        if (name == QLatin1String(modifier.name))
            return modifier.bit;
    }
    return 0;
}

/// The symbol that the US layout has on a key, in lower case.
QString symbolOf(quint32 virtualKey) {
    const QString name = HotkeyFormat::keyCodeToString(virtualKey);
    if (name == QStringLiteral("↩"))
        return QStringLiteral("return");
    if (name == QStringLiteral("⇥"))
        return QStringLiteral("tab");
    if (name == QStringLiteral("⎋"))
        return QStringLiteral("escape");
    return name.toLower();
}

QStringList words(const QString &line) {
    static const QRegularExpression space(QStringLiteral("\\s+"));
    return line.split(space, Qt::SkipEmptyParts);
}

/// Splits "--release Mod4+v exec program" and the like; empty without a combination.
QString combinationIn(QStringList parts) {
    while (!parts.isEmpty() && parts.constFirst().startsWith(QLatin1String("--")))
        parts.removeFirst();
    return parts.value(0);
}

bool isBindCommand(const QString &word) {
    return word == QLatin1String("bindsym") || word == QLatin1String("bindcode");
}

} // namespace

SwayConfiguration::SwayConfiguration(const QString &text) {
    QStringList blocks; // the commands whose braces are open
    QString line;
    for (const QString &piece : text.split(u'\n')) {
        line += piece;
        if (line.endsWith(u'\\')) {
            line.chop(1);
            continue;
        }
        addLine(std::exchange(line, {}).trimmed(), blocks);
    }
}

void SwayConfiguration::addLine(const QString &line, QStringList &blocks) {
    QStringList parts = words(replaceVariables(line));
    if (parts.isEmpty() || parts.constFirst().startsWith(u'#'))
        return;
    if (parts.constFirst() == QLatin1String("}")) {
        if (!blocks.isEmpty())
            blocks.removeLast();
    } else if (parts.constLast() == QLatin1String("{")) {
        blocks.append(parts.constFirst());
    } else if (parts.constFirst() == QLatin1String("set") && parts.size() > 2) {
        // Not replaced in the name of the variable.
        m_variables.append({words(line).at(1), parts.mid(2).join(u' ')});
    } else if (blocks.isEmpty() && isBindCommand(parts.constFirst())) {
        addBinding(combinationIn(parts.mid(1)));
    } else if (blocks.size() == 1 && isBindCommand(blocks.constFirst())) {
        addBinding(combinationIn(parts));
    }
}

QString SwayConfiguration::replaceVariables(QString text) const {
    // The latest of a name holds.
    for (auto variable = m_variables.crbegin(); variable != m_variables.crend(); ++variable)
        text.replace(variable->first, variable->second);
    return text;
}

void SwayConfiguration::addBinding(const QString &combination) {
    Binding binding{0, {}};
    for (const QString &name : combination.toLower().split(u'+', Qt::SkipEmptyParts)) {
        if (const quint32 bit = modifierBit(name))
            binding.modifiers |= bit;
        else
            binding.key = binding.key.isEmpty() ? name : combination; // several keys: none of ours
    }
    if (!binding.key.isEmpty())
        m_bindings.append(binding);
}

bool SwayConfiguration::binds(const KeyCombo &combo) const {
    const auto x11Code = KeyCodes::x11FromVirtual(combo.keyCode);
    const QString code = x11Code ? QString::number(*x11Code) : QString();
    const QString symbol = symbolOf(combo.keyCode);
    return std::any_of(m_bindings.begin(), m_bindings.end(), [&](const Binding &binding) {
        return binding.modifiers == combo.modifiers &&
               (binding.key == symbol || binding.key == code);
    });
}
