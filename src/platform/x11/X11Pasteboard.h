#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11SelectionOwner.h"
#include "platform/x11/X11SelectionReader.h"

#include <QHash>

#include <memory>

/// The selection CLIPBOARD, as a pasteboard of one item. What a turn of the event loop has read
/// once it does not ask for again. Main thread only.
class X11Pasteboard : public QObject, public Pasteboard {
    Q_OBJECT

public:
    explicit X11Pasteboard(std::shared_ptr<X11Connection> x11);

    qint64 changeCount() override;
    std::optional<QString> text(PasteboardType type) override;
    std::optional<QList<QList<PasteboardOffer>>> items() override;
    PasteboardItem read(qsizetype item, const QList<PasteboardOffer> &offers) override;
    void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours) override;
    void restore(const QList<PasteboardItem> &items) override;
    PasteboardFetches fetches() override;
    void handOver() override;

private:
    /// What was read in this turn.
    struct Reading {
        std::optional<QList<PasteboardOffer>> offers;
        QHash<QByteArray, std::optional<PasteboardRepresentation>> data;
        QHash<int, QString> texts;
        bool offersRead = false;
    };

    void ownerChanged(const xcb_xfixes_selection_notify_event_t &event);
    bool foreignContentIsOurs();
    void publish(const PasteboardItem &contents);
    void beginReading();
    void keepReadingForThisTurn();
    const std::optional<QList<PasteboardOffer>> &offers();
    void fetch(const QList<QByteArray> &names);
    QList<std::optional<X11SelectionReader::Data>> convert(const QList<QByteArray> &names);
    void keep(const QList<QByteArray> &names,
              const QList<std::optional<X11SelectionReader::Data>> &answers);

    std::shared_ptr<X11Connection> m_x11;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    std::unique_ptr<X11SelectionOwner> m_owner;
    std::unique_ptr<X11SelectionReader> m_reader;
    Reading m_reading;
    bool m_readingExpires = false;
    qint64 m_changeCount = 0;
    QByteArray m_written;                 ///< the plain text of our last write
    std::optional<qint64> m_writtenCount; ///< the count it had, until a foreign change is certain
};
