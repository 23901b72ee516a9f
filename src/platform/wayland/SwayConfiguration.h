#pragma once

#include "model/HotkeyFormat.h"

#include <QList>
#include <QString>

/// What the user's configuration file of sway binds, as far as it can be told from the text: in the
/// mode that sway starts in, without the files that it includes.
class SwayConfiguration {
public:
    explicit SwayConfiguration(const QString &text);

    /// Whether a key binding has exactly these modifiers and this key; a key named by a symbol
    /// counts as where the US layout has it.
    bool binds(const KeyCombo &combo) const;

private:
    struct Binding {
        quint32 modifiers;
        QString key; ///< a symbol in lower case, or an X key code in decimal
    };

    void addLine(const QString &line, QStringList &blocks);
    void addBinding(const QString &combination);
    QString replaceVariables(QString text) const;

    QList<std::pair<QString, QString>> m_variables;
    QList<Binding> m_bindings;
};
