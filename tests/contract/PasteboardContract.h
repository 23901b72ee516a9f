#pragma once

#include "platform/Pasteboard.h"

#include <QMap>

#include <memory>

/// The other programs on a desktop with a clipboard.
class ClipboardNeighbours {
public:
    virtual ~ClipboardNeighbours() = default;

    /// One of them copies this text and this HTML (unless empty).
    virtual void copy(const QString &text, const QString &html) = 0;

    /// One of them pastes: the text and the HTML on the clipboard, "(nothing)" for what is not
    /// there.
    virtual QStringList paste() = 0;
};

/// What every pasteboard must do, whatever is behind it. Each row runs in a test function of its
/// own.
namespace PasteboardContract {

using MakePasteboard = std::function<std::shared_ptr<Pasteboard>()>;

/// The rows, by name; the text is what went wrong, empty if nothing did.
QMap<QString, std::function<QString(const MakePasteboard &, ClipboardNeighbours &)>> rows();

/// Waits for the answer, in the event loop.
ClipboardContents read(Pasteboard &pasteboard);
std::optional<PasteboardWrite> write(Pasteboard &pasteboard, const QByteArray &text,
                                     const QByteArray &html, std::optional<qint64> ifCountIs = {});
std::optional<PasteboardWrite> restore(Pasteboard &pasteboard, const QList<PasteboardItem> &items,
                                       std::optional<qint64> ifCountIs = {});

} // namespace PasteboardContract
