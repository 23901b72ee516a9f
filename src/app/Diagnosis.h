#pragma once

#include <QList>
#include <QString>

/// What was found out about one capability of the desktop.
struct Finding {
    enum class Mark {
        Ok,
        Note,    ///< worth knowing; links are pasted all the same
        Problem, ///< links can't be pasted by the hotkey
    };

    QString capability;
    Mark mark = Mark::Ok;
    QString text;
    QString advice = {}; ///< what the user can do; empty where there is nothing to do
};

/// All findings, fit to be passed on: no address, title, id or token is in them.
struct Diagnosis {
    QString heading;
    QList<Finding> findings;

    /// Whether links can be pasted by the hotkey.
    bool isGood() const;

    /// A line for each finding, and what to do below it. The home folder stands as "~".
    QString text() const;
};
