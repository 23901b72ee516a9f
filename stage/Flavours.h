#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

/// What a clipboard owner offers: data under a name; X11 delivers it as a type, too.
struct Flavour {
    QByteArray name, type, data;
};

/// 'text/html=@file', 'text/plain;charset=utf-8=some text', 'TEXT>UTF8_STRING=some text'
inline std::optional<Flavour> parseFlavour(const QString &argument) {
    const qsizetype at = argument.lastIndexOf(QStringLiteral("=@"));
    const qsizetype split = at >= 0 ? at : argument.lastIndexOf(u'=');
    if (split < 1)
        return std::nullopt;
    const QByteArrayList names = argument.first(split).toLatin1().split('>');
    Flavour flavour{names.first(), names.last(), argument.sliced(split + 1).toUtf8()};
    if (at < 0)
        return flavour;
    QFile file(argument.sliced(split + 2));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    flavour.data = file.readAll();
    return flavour;
}

/// All of them; nothing, with a message on the error output, if one cannot be used.
inline std::optional<QList<Flavour>> parseFlavours(const QStringList &arguments) {
    QList<Flavour> flavours;
    for (const QString &argument : arguments) {
        const auto flavour = parseFlavour(argument);
        if (!flavour) {
            std::fprintf(stderr, "cannot use the flavour %s\n", qPrintable(argument));
            return std::nullopt;
        }
        flavours.append(*flavour);
    }
    return flavours;
}
