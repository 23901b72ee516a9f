#pragma once

#include <QIcon>
#include <QString>

#include <optional>

/// The picture in the status area: our mark, with a warning triangle while the token is aging and
/// faint while a fetch is in flight. Built when its state changes, else kept. Main thread only.
class StatusIcon {
public:
    /// The picture for a state.
    const QIcon &icon(bool tokenIsAging, bool isFetching);

    /// What the picture says in words.
    QString description() const;

private:
    /// The pictures of one aging state.
    struct Cache {
        bool tokenIsAging = false;
        bool hasBadge = false;
        QIcon plain;
        QIcon dimmed;
    };

    static Cache build(bool tokenIsAging);

    std::optional<Cache> m_cache;
};
