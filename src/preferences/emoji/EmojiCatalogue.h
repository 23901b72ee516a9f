#pragma once

#include <QList>
#include <QString>

/// An emoji and its name in lower case, as the character data have it.
struct Emoji {
    QString text;
    QString name;
};

/// Every emoji of the character data that is one picture by itself, and the flags of countries.
namespace EmojiCatalogue {

/// All of them, faces first. Built on first use, which takes a few milliseconds. Main thread only.
const QList<Emoji> &all();

/// Those whose name contains each word of `query`: first the one of that name, then where they are
/// words of the name, then where they start words, then the rest. An emoji finds itself.
QList<Emoji> matching(const QString &query);

/// The emoji chosen last, newest first. Forgotten when the program ends.
const QList<Emoji> &recent();
void remember(const Emoji &emoji);

} // namespace EmojiCatalogue
