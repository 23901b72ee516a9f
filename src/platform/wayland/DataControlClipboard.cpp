#include "platform/wayland/DataControlClipboard.h"

#include "platform/linux/FlavourNames.h"

#include <algorithm>

namespace {

/// How often a clipboard is read anew that changes while it is read.
constexpr int mostReads = 3;

/// A clipboard manager fetches what it wants to keep as soon as somebody owns it; one that lets
/// this pass wants nothing more.
constexpr std::chrono::milliseconds longestSilence{100};
constexpr std::chrono::seconds longestHandOver{3};

} // namespace

DataControlClipboard::DataControlClipboard(int interrupt, ThreadedPasteboard::News news)
    : m_news(std::move(news)), m_wayland(interrupt) {
    followSeats();
    m_wayland.roundTrip(); // and what is on the clipboard already is no change
    m_count = {};
}

QString DataControlClipboard::problem() const {
    return DataControl::problem(m_wayland);
}

/// The clipboard is that of the seat where the keyboard is. Seats come and go; one where we own the
/// clipboard is kept until it goes.
void DataControlClipboard::followSeats() {
    if (!problem().isEmpty()) {
        if (std::exchange(m_control, nullptr))
            tell();
        return;
    }
    const bool isGone = !m_control || m_control->hasEnded();
    wl_seat *best = m_wayland.seats().best();
    if (!isGone && (best == m_seat || m_control->isOwner()))
        return;
    m_seat = best;
    m_control = DataControl::make(m_wayland, {.changed =
                                                  [this] {
                                                      m_count.changedByOthers();
                                                      m_reads.abandon();
                                                  },
                                              .lost =
                                                  [this] {
                                                      m_count.changedByOthers();
                                                      m_contents.clear();
                                                      tell();
                                                  },
                                              .fetched =
                                                  [this](const QByteArray &data, Descriptor pipe) {
                                                      m_latestFetch = Dispatch::Clock::now();
                                                      m_transfers.begin(std::move(pipe), data);
                                                      tell();
                                                  }});
}

void DataControlClipboard::tell() {
    m_news({isOwner(), m_latestFetch, !m_transfers.isEmpty()});
}

int DataControlClipboard::prepare(std::vector<pollfd> &wanted) {
    // Posted work may have asked for something, and read what nothing would wake us up for.
    m_wayland.handleEvents();
    followSeats();
    m_wayland.handleEvents();
    m_wayland.appendWanted(wanted);
    m_transfers.appendWanted(wanted);
    return m_transfers.timeout();
}

void DataControlClipboard::serve(const pollfd *) {
    m_wayland.handleEvents();
    if (m_transfers.serve())
        tell();
}

/// Whoever wants what we own is served while we wait for others.
WaylandConnection::Along DataControlClipboard::along() {
    return {[this](std::vector<pollfd> &wanted) {
                m_transfers.appendWanted(wanted);
                m_reads.appendWanted(wanted);
            },
            [this] {
                if (m_transfers.serve())
                    tell();
                m_reads.serve();
            }};
}

/// Learns of everything that has happened until now. False when there is no clipboard.
bool DataControlClipboard::catchUp() {
    m_wayland.roundTrip(along());
    followSeats();
    return m_control != nullptr;
}

std::optional<PasteboardItem>
DataControlClipboard::readOffered(const std::function<bool(const QByteArray &)> &isWanted) {
    if (!m_control || !m_control->offered())
        return std::nullopt;
    QList<QByteArray> names = *m_control->offered();
    names.removeIf([&](const QByteArray &name) { return !isWanted(name); });
    for (const QByteArray &name : std::as_const(names))
        m_control->receive(name, m_reads.begin());
    m_wayland.waitUntil([this] { return m_reads.isFinished(); },
                        [this] { return m_reads.deadline(); }, along());
    PasteboardItem item;
    auto data = m_reads.take();
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (auto &came = data[std::size_t(i)])
            item.append({names[i], {}, std::move(*came)});
    }
    return item;
}

void DataControlClipboard::settleCount() {
    m_count.settle([this]() -> std::optional<QString> {
        const auto item = readOffered([](const QByteArray &name) {
            return FlavourNames::typeOf(name) == PasteboardType::String;
        });
        return item ? FlavourNames::text(*item, PasteboardType::String) : std::nullopt;
    });
}

ClipboardContents DataControlClipboard::read() {
    if (!catchUp())
        return {};
    for (int times = 1;; ++times) {
        if (isOwner())
            return FlavourNames::contents(m_count.value(), m_contents);
        const qint64 count = m_count.value();
        const auto item = readOffered([](const QByteArray &) { return true; });
        // Half of one owner's and half of the next one's is what nobody copied.
        if (count != m_count.value() && times < mostReads)
            continue;
        auto contents = FlavourNames::contents(count, item);
        m_count.settle([&] { return contents.text; });
        contents.changeCount = m_count.value();
        return contents;
    }
}

std::optional<PasteboardWrite> DataControlClipboard::own(const PasteboardItem &contents,
                                                         std::optional<qint64> ifCountIs) {
    if (!catchUp())
        return std::nullopt;
    if (ifCountIs)
        settleCount();
    if (ifCountIs && m_count.value() != *ifCountIs)
        return std::nullopt;
    m_control->own(contents);
    m_contents = contents;
    m_latestFetch.reset();
    const qint64 count = m_count.changedByUs(contents);
    tell();
    if (!catchUp() || !isOwner()) {
        m_count.failedToChange();
        return std::nullopt;
    }
    m_lastOwned = Dispatch::Clock::now();
    return PasteboardWrite{count, m_lastOwned};
}

bool DataControlClipboard::holdsOurs() {
    return catchUp() && isOwner();
}

void DataControlClipboard::handOver() {
    const auto latest = WaylandConnection::Clock::now() + longestHandOver;
    m_wayland.waitUntil([this] { return !isOwner(); },
                        [this, latest] {
                            const auto lastSign = std::max(m_lastOwned, m_transfers.lastSign());
                            return std::min(latest, lastSign + longestSilence);
                        },
                        along());
}
