#pragma once

#include <QRegularExpression>

/// Matching of views, which has other names from 6.5 of the toolkit on. The text must outlive what
/// is returned. Thread-safe.
namespace ViewMatching {

inline QRegularExpressionMatch first(const QRegularExpression &pattern, QStringView text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    return pattern.matchView(text);
#else
    return pattern.match(text);
#endif
}

/// `text` must be well-formed UTF-16: nothing checks it again.
inline QRegularExpressionMatchIterator all(const QRegularExpression &pattern, QStringView text) {
    constexpr auto type = QRegularExpression::NormalMatch;
    constexpr auto options = QRegularExpression::DontCheckSubjectStringMatchOption;
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    return pattern.globalMatchView(text, 0, type, options);
#else
    return pattern.globalMatch(text, 0, type, options);
#endif
}

} // namespace ViewMatching
