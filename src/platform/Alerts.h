#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// What an alert says. The first button is the default.
struct Alert {
    enum class Style { Warning, Informational };

    Style style = Style::Informational;
    QString message;
    QString informativeText;
    QStringList buttons;
};

/// Alerts in front of everything else. Main thread only.
class Alerts {
public:
    virtual ~Alerts() = default;

    /// Shows `alert` and returns; `chosen` gets the index of the button (-1 when it was closed).
    /// One with that message that is open already comes to the front with the new informative text,
    /// and only its first caller is told.
    virtual void show(const Alert &alert, std::function<void(int button)> chosen) = 0;
};
