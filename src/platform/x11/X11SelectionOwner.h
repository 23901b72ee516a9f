#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11Connection.h"

/// Owns a selection and answers those who ask for it, large data in pieces.
class X11SelectionOwner {
public:
    using News = std::function<void(const PasteboardUse &)>;

    /// `news` is called whenever others have fetched or taken what we own.
    X11SelectionOwner(X11Connection &x11, xcb_atom_t selection, News news);

    /// Takes the selection as of the server's `time` and offers `contents`. False when the server
    /// gave it to somebody else.
    bool own(const PasteboardItem &contents, xcb_timestamp_t time);

    /// Somebody else has the selection now.
    void lost();

    bool isOwner() const { return m_isOwner; }
    const PasteboardItem &contents() const { return m_contents; }

    /// Whether a change of owner as XFixes tells it is our own claim.
    bool isOwnClaim(const xcb_xfixes_selection_notify_event_t &event) const;

    /// Asks the clipboard manager, if one runs, to take the contents over, and serves it meanwhile.
    /// One that lets a quarter of a second pass without a sign of life is given up.
    void handOver();

private:
    /// Data on its way to a requestor piece by piece, each sent when the one before was taken. It
    /// keeps its bytes, so that it ends well even after the selection has changed.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        QByteArray data;
        qsizetype sent = 0;
        X11Connection::Clock::time_point lastSign;
    };

    bool handle(const xcb_generic_event_t &event);
    void selectionRequest(const xcb_selection_request_event_t &event);
    bool answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool answerMultiple(xcb_window_t requestor, xcb_atom_t property);
    bool answerTargets(xcb_window_t requestor, xcb_atom_t property);
    void send(xcb_window_t requestor, xcb_atom_t property,
              const PasteboardRepresentation &representation);
    bool sendNextPiece(xcb_window_t requestor, xcb_atom_t property);
    void forgetTransfersTo(xcb_window_t requestor);
    void forgetStalledTransfers();
    void tell();

    X11Connection &m_x11;
    xcb_atom_t m_selection;
    News m_news;
    PasteboardItem m_contents;
    bool m_isOwner = false;
    bool m_isHandingOver = false;
    xcb_timestamp_t m_claimTime = XCB_CURRENT_TIME;
    std::optional<Dispatch::Clock::time_point> m_latestFetch;
    X11Connection::Clock::time_point m_lastSign; ///< of anybody who asks
    QList<Transfer> m_transfers;
};
