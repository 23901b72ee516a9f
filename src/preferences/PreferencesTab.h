#pragma once

#include "preferences/kit/Symbols.h"

#include <QColor>
#include <QString>

#include <array>

/// The tabs of the preferences window, in order.
enum class PreferencesTab { General, Jira, Confluence, Account, Connection };

namespace PreferencesTabs {

inline constexpr std::array allCases{PreferencesTab::General, PreferencesTab::Jira,
                                     PreferencesTab::Confluence, PreferencesTab::Account,
                                     PreferencesTab::Connection};

/// How a tab looks in the sidebar.
struct Face {
    QString title;
    Symbol symbol;
    QColor tile;
    QColor glyph;
};

const Face &face(PreferencesTab tab);

} // namespace PreferencesTabs
