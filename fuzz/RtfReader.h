#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// What a word processor makes of an RTF document, as far as links need it.
struct RtfContent {
    struct Run {
        QString text;
        bool italic = false;
        bool bold = false;
        /// The address of the hyperlink field around the run; empty outside of one.
        QString link;

        bool operator==(const Run &) const = default;
    };

    QList<Run> runs;
};

/// Reads `rtf`; nothing if it is not well-formed (unbalanced groups, bytes beyond ASCII, no
/// header).
std::optional<RtfContent> readRtf(const QByteArray &rtf);
