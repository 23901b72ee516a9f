#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

/// Text in italic and bold runs, with at most one link over the whole of it. A plain value.
class AttributedText {
public:
    /// A stretch of text in one style; never empty.
    struct Run {
        QString text;
        bool italic = false;
        bool bold = false;

        bool operator==(const Run &) const = default;
    };

    /// The runs in order; neighbours differ in style.
    const QList<Run> &runs() const { return m_runs; }

    /// What the whole text links to; empty for no link.
    const QUrl &link() const { return m_link; }
    void setLink(const QUrl &link) { m_link = link; }

    /// Appends `text` in a style. Empty text adds nothing.
    void append(const QString &text, bool italic, bool bold);

    /// An RTF document of one paragraph: pure ASCII, other characters as \u escapes. Control
    /// characters without a meaning in running text are left out, line ends become line breaks,
    /// a lone surrogate becomes U+FFFD. An invalid link, or one without text, is left out.
    QByteArray toRtf() const;

private:
    QList<Run> m_runs;
    QUrl m_link;
};
