#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11Connection.h"

#include <optional>

/// Reads a selection from whoever owns it.
class X11SelectionReader {
public:
    /// What an owner offers (nothing: it does not answer), and those of it that were wanted and
    /// came, in the owner's order.
    struct Reading {
        std::optional<QList<QByteArray>> offered;
        PasteboardItem given;
    };

    /// An owner that lets this pass without a sign of life counts as hung.
    static constexpr std::chrono::milliseconds longestSilence{1000};
    /// The most that one read may take, however lively the owner drips.
    static constexpr std::chrono::milliseconds longestRead{5000};
    /// The most that is taken of one target; more counts as not given.
    static constexpr qsizetype largestData = qsizetype{256} * 1024 * 1024;

    X11SelectionReader(X11Connection &x11, xcb_atom_t selection);

    /// Asks what there is and for each of it that `isWanted`, once, and waits for the answers.
    Reading read(const std::function<bool(const QByteArray &name)> &isWanted);

    /// The owner is gone: whatever is still awaited will not come.
    void ownerChanged();

private:
    struct Data {
        xcb_atom_t type = XCB_ATOM_NONE;
        QByteArray bytes;
    };
    enum class Stage { Asked, InPieces, Done, Refused };
    struct Conversion {
        xcb_atom_t target;
        xcb_atom_t property;
        Stage stage = Stage::Asked;
        Data data;
    };

    bool handle(const xcb_generic_event_t &event);
    bool selectionNotify(const xcb_selection_notify_event_t &event);
    bool propertyNotify(const xcb_property_notify_event_t &event);
    void ask(xcb_atom_t target);
    void follow(const std::function<bool(const QByteArray &)> &isWanted);
    Data takeProperty(xcb_atom_t property);
    void takePiece(Conversion &conversion);
    bool isFinished() const;
    xcb_atom_t nextProperty();

    X11Connection &m_x11;
    xcb_atom_t m_selection;
    xcb_atom_t m_targets;
    xcb_atom_t m_incr;
    QList<Conversion> m_conversions; ///< the first is the question what there is
    std::optional<QList<QByteArray>> m_offered;
    X11Connection::Clock::time_point m_lastSign;
    QList<xcb_atom_t> m_properties;
    qsizetype m_propertyNumber = 0;
};
