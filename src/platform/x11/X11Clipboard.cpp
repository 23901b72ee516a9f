#include "platform/x11/X11Clipboard.h"

#include "platform/linux/FlavourNames.h"

namespace {

/// How often a clipboard is read anew that changes while it is read.
constexpr int mostReads = 3;

} // namespace

X11Clipboard::X11Clipboard(int interrupt, ThreadedPasteboard::News news) : m_x11(interrupt) {
    if (!m_x11.isOpen())
        return;
    m_x11.atoms({"CLIPBOARD", "TARGETS", "UTF8_STRING", "text/html", "INCR", "MULTIPLE",
                 "TIMESTAMP", "CLIPBOARD_MANAGER"});
    const xcb_atom_t selection = m_x11.atom("CLIPBOARD");
    m_owner = std::make_unique<X11SelectionOwner>(m_x11, selection, std::move(news));
    m_reader = std::make_unique<X11SelectionReader>(m_x11, selection);
    m_x11.watchSelection(selection, [this](const xcb_xfixes_selection_notify_event_t &event) {
        ownerChanged(event);
    });
}

QString X11Clipboard::problem() const {
    return m_owner ? QString() : QStringLiteral("no X server answers");
}

int X11Clipboard::prepare(std::vector<pollfd> &wanted) {
    if (!m_owner || m_x11.isBroken())
        return -1;
    // A wait for replies may have read events that nothing would wake us up for.
    m_x11.processEvents();
    wanted.push_back({m_x11.descriptor(), POLLIN, 0});
    return -1;
}

void X11Clipboard::serve(const pollfd *) {
    if (m_owner && !m_x11.isBroken())
        m_x11.processEvents();
}

void X11Clipboard::ownerChanged(const xcb_xfixes_selection_notify_event_t &event) {
    if (m_owner->isOwnClaim(event))
        return;
    m_count.changedByOthers();
    m_owner->lost();
    m_reader->ownerChanged();
}

ClipboardContents X11Clipboard::read() {
    if (!m_owner)
        return {};
    // Somebody may have taken it from us; who else owns it makes no difference.
    if (m_owner->isOwner())
        m_x11.sync();
    if (m_owner->isOwner())
        return FlavourNames::contents(m_count.value(), m_owner->contents());
    for (int times = 1;; ++times) {
        const qint64 count = m_count.value();
        const auto reading = m_reader->read(
            [](const QByteArray &name) { return FlavourNames::typeOf(name).has_value(); });
        // Half of one owner's and half of the next one's is what nobody copied.
        if (count != m_count.value() && times < mostReads)
            continue;
        auto contents = FlavourNames::contents(count, reading.offered ? std::optional(reading.given)
                                                                      : std::nullopt);
        m_count.settle([&] { return contents.text; });
        contents.changeCount = m_count.value();
        return contents;
    }
}

std::optional<PasteboardWrite> X11Clipboard::own(const PasteboardItem &contents,
                                                 std::optional<qint64> ifCountIs) {
    if (!m_owner)
        return std::nullopt;
    // A claim by somebody else that we have not heard of by then is later than ours, and wins.
    const xcb_timestamp_t time = m_x11.freshTimestamp();
    if (ifCountIs) {
        m_count.settle([this] {
            const auto reading = m_reader->read([](const QByteArray &name) {
                return FlavourNames::typeOf(name) == PasteboardType::String;
            });
            return FlavourNames::text(reading.given, PasteboardType::String);
        });
    }
    if (ifCountIs && m_count.value() != *ifCountIs)
        return std::nullopt;
    if (!m_owner->own(contents, time)) {
        m_count.failedToChange();
        return std::nullopt;
    }
    return PasteboardWrite{m_count.changedByUs(contents), Dispatch::Clock::now()};
}

bool X11Clipboard::holdsOurs() {
    if (!m_owner)
        return false;
    m_x11.sync();
    return m_owner->isOwner();
}

void X11Clipboard::handOver() {
    m_owner->handOver();
}
