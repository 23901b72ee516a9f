#pragma once

#include "platform/x11/X11Connection.h"

#include <optional>

/// Reads a selection from whoever owns it. Main thread only.
class X11SelectionReader {
public:
    struct Data {
        xcb_atom_t type = XCB_ATOM_NONE;
        QByteArray bytes;
    };

    /// An owner that lets this pass without a sign of life counts as hung.
    static constexpr std::chrono::milliseconds longestSilence{1000};
    /// The most that one read may take, however lively the owner drips.
    static constexpr std::chrono::milliseconds longestRead{5000};
    /// The most that is taken of one target; more counts as not given.
    static constexpr qsizetype largestData = qsizetype{256} * 1024 * 1024;

    X11SelectionReader(X11Connection &x11, xcb_atom_t selection);

    /// Asks for all `targets` at once and waits for the answers, in the order of the targets;
    /// nothing for each that the owner refused or did not finish. `ownerIsSilent` tells which.
    QList<std::optional<Data>> convert(const QList<xcb_atom_t> &targets);

    /// Whether the last convert() gave up waiting.
    bool ownerIsSilent() const { return m_ownerIsSilent; }

    /// The owner is gone: whatever is still awaited will not come.
    void ownerChanged();

private:
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
    void takePiece(Conversion &conversion);
    Data takeProperty(xcb_atom_t property);
    bool isFinished() const;
    xcb_atom_t nextProperty();

    X11Connection &m_x11;
    xcb_atom_t m_selection;
    xcb_atom_t m_incr;
    QList<Conversion> m_conversions;
    X11Connection::Clock::time_point m_lastSign;
    int m_propertyNumber = 0;
    bool m_ownerIsSilent = false;
};
