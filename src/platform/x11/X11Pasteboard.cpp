#include "platform/x11/X11Pasteboard.h"

#include "platform/x11/X11Targets.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace {

/// The mime data on the clipboard when one of our own windows has put it there. Asking the X server
/// for it would wait for ourselves.
const QMimeData *ownWindowsData() {
    const QClipboard *clipboard = QGuiApplication::clipboard();
    return clipboard->ownsClipboard() ? clipboard->mimeData() : nullptr;
}

PasteboardOffer offered(const QByteArray &name) {
    return {name, X11Targets::typeOf(name)};
}

/// Targets that describe the selection or do something to it; the owner answers them itself.
bool holdsData(const QByteArray &name) {
    static constexpr const char *others[] = {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS",
                                             "DELETE"};
    return !name.isEmpty() && std::none_of(std::begin(others), std::end(others),
                                           [&](const char *other) { return name == other; });
}

QByteArray plainTextOf(const PasteboardItem &item) {
    for (const PasteboardRepresentation &representation : item) {
        if (X11Targets::typeOf(representation.name) == PasteboardType::String)
            return X11Targets::decodedText(representation, PasteboardType::String).toUtf8();
    }
    return {};
}

} // namespace

X11Pasteboard::X11Pasteboard(std::shared_ptr<X11Connection> x11) : m_x11(std::move(x11)) {
    if (!m_x11->isOpen())
        return;
    m_selection = m_x11->atom("CLIPBOARD");
    m_owner = std::make_unique<X11SelectionOwner>(*m_x11, m_selection);
    m_reader = std::make_unique<X11SelectionReader>(*m_x11, m_selection);
    m_x11->watchSelection(m_selection, [this](const xcb_xfixes_selection_notify_event_t &event) {
        ownerChanged(event);
    });
}

void X11Pasteboard::ownerChanged(const xcb_xfixes_selection_notify_event_t &event) {
    if (m_owner->isOwnClaim(event))
        return;
    ++m_changeCount;
    m_reading = {};
    m_reader->ownerChanged();
}

qint64 X11Pasteboard::changeCount() {
    if (!m_owner)
        return m_changeCount;
    m_x11->sync();
    if (m_writtenCount && m_changeCount > *m_writtenCount) {
        // A clipboard manager may have taken over what we wrote; that is no new copy. One look
        // decides, and the next foreign change counts again.
        if (foreignContentIsOurs())
            m_changeCount = *m_writtenCount;
        m_writtenCount.reset();
    }
    return m_changeCount;
}

bool X11Pasteboard::foreignContentIsOurs() {
    const auto text = this->text(PasteboardType::String);
    return text && text->toUtf8() == m_written;
}

const std::optional<QList<PasteboardOffer>> &X11Pasteboard::offers() {
    if (std::exchange(m_reading.offersRead, true))
        return m_reading.offers;
    keepReadingForThisTurn();
    if (const QMimeData *own = ownWindowsData()) {
        m_reading.offers.emplace();
        for (const QString &format : own->formats())
            m_reading.offers->append(offered(format.toLatin1()));
        return m_reading.offers;
    }
    if (m_owner->isOwner()) {
        m_reading.offers.emplace();
        for (const PasteboardRepresentation &representation : m_owner->contents())
            m_reading.offers->append(offered(representation.name));
        return m_reading.offers;
    }
    // Who asks what there is wants the texts next; asked together they cost one round trip.
    QList<QByteArray> names{"TARGETS", "UTF8_STRING", "text/html"};
    auto answers = convert(names);
    m_reading.offersRead = true; // an owner that came meanwhile has emptied the reading
    const auto answer = answers.takeFirst();
    if (!answer)
        return m_reading.offers;
    const auto *atoms = reinterpret_cast<const xcb_atom_t *>(answer->bytes.constData());
    const auto count = answer->bytes.size() / static_cast<qsizetype>(sizeof(xcb_atom_t));
    m_reading.offers.emplace();
    for (const QByteArray &name : m_x11->atomNames(QList<xcb_atom_t>(atoms, atoms + count))) {
        if (holdsData(name))
            m_reading.offers->append(offered(name));
    }
    names.removeFirst();
    keep(names, answers);
    return m_reading.offers;
}

QList<std::optional<X11SelectionReader::Data>>
X11Pasteboard::convert(const QList<QByteArray> &names) {
    QList<xcb_atom_t> targets;
    for (const QByteArray &name : names)
        targets.append(m_x11->atom(name));
    return m_reader->convert(targets);
}

void X11Pasteboard::keep(const QList<QByteArray> &names,
                         const QList<std::optional<X11SelectionReader::Data>> &answers) {
    const auto offers = m_reading.offers.value_or(QList<PasteboardOffer>());
    bool isOfferOwed = false;
    for (qsizetype i = 0; i < names.size(); ++i) {
        auto &entry = m_reading.data[names[i]];
        if (answers[i])
            entry = PasteboardRepresentation{
                names[i], m_x11->atomNames({answers[i]->type}).constFirst(), answers[i]->bytes};
        else
            isOfferOwed = isOfferOwed || std::any_of(offers.begin(), offers.end(),
                                                     [&](const PasteboardOffer &offer) {
                                                         return offer.name == names[i];
                                                     });
    }
    if (m_reader->ownerIsSilent() && isOfferOwed) {
        // What it did not give now it will not give in this turn either; nobody waits for it twice.
        for (const PasteboardOffer &offer : offers)
            m_reading.data.insert(offer.name, m_reading.data.value(offer.name));
    }
}

void X11Pasteboard::fetch(const QList<QByteArray> &names) {
    QList<QByteArray> missing;
    for (const QByteArray &name : names) {
        if (!name.isEmpty() && !m_reading.data.contains(name) && !missing.contains(name))
            missing.append(name);
    }
    if (missing.isEmpty())
        return;
    if (const QMimeData *own = ownWindowsData()) {
        for (const QByteArray &name : missing)
            m_reading.data.insert(
                name, PasteboardRepresentation{name, name, own->data(QString::fromLatin1(name))});
        return;
    }
    if (m_owner->isOwner()) {
        for (const PasteboardRepresentation &representation : m_owner->contents())
            m_reading.data.insert(representation.name, representation);
        return;
    }
    keep(missing, convert(missing));
}

// What was read in this turn holds for all of it, so only a turn's first reading waits for news of
// changes.
void X11Pasteboard::beginReading() {
    if (!m_readingExpires)
        m_x11->sync();
}

std::optional<QString> X11Pasteboard::text(PasteboardType type) {
    if (!m_owner)
        return std::nullopt;
    beginReading();
    const auto known = m_reading.texts.constFind(static_cast<int>(type));
    if (known != m_reading.texts.constEnd())
        return *known;
    if (!offers())
        return std::nullopt;
    const QByteArray name = X11Targets::preferredName(*m_reading.offers, type);
    // Who wants the one wants the other next; asked together they cost one round trip.
    fetch({X11Targets::preferredName(*m_reading.offers, PasteboardType::String),
           X11Targets::preferredName(*m_reading.offers, PasteboardType::Html), name});
    const auto data = m_reading.data.value(name);
    if (!data)
        return std::nullopt;
    const QString text = X11Targets::decodedText(*data, type);
    m_reading.texts.insert(static_cast<int>(type), text);
    return text;
}

std::optional<QList<QList<PasteboardOffer>>> X11Pasteboard::items() {
    if (!m_owner)
        return std::nullopt;
    beginReading();
    if (!offers())
        return std::nullopt;
    return QList<QList<PasteboardOffer>>{*m_reading.offers};
}

PasteboardItem X11Pasteboard::read(qsizetype item, const QList<PasteboardOffer> &offers) {
    PasteboardItem given;
    if (!m_owner || item != 0)
        return given;
    keepReadingForThisTurn();
    QList<QByteArray> names;
    for (const PasteboardOffer &offer : offers)
        names.append(offer.name);
    fetch(names);
    for (const QByteArray &name : names) {
        if (const auto data = m_reading.data.value(name))
            given.append(*data);
    }
    return given;
}

void X11Pasteboard::write(const QList<std::pair<PasteboardType, QByteArray>> &flavours) {
    PasteboardItem contents;
    for (const auto &[type, data] : flavours)
        contents += X11Targets::representations(type, data);
    publish(contents);
}

void X11Pasteboard::restore(const QList<PasteboardItem> &items) {
    // X11 has one item; several, from another kind of desktop, can't come here.
    if (!items.isEmpty())
        publish(items.constFirst());
}

void X11Pasteboard::publish(const PasteboardItem &contents) {
    if (!m_owner)
        return;
    // Changes that happened before ours are counted before it.
    m_x11->sync();
    m_reading = {};
    ++m_changeCount;
    if (!m_owner->own(contents)) {
        m_writtenCount.reset();
        return;
    }
    m_written = plainTextOf(contents);
    m_writtenCount = m_changeCount;
}

PasteboardFetches X11Pasteboard::fetches() {
    if (!m_owner)
        return {};
    m_x11->sync();
    return m_owner->fetches();
}

void X11Pasteboard::handOver() {
    if (!m_owner)
        return;
    m_x11->sync();
    if (m_owner->isOwner())
        m_owner->handOver();
}

void X11Pasteboard::keepReadingForThisTurn() {
    if (std::exchange(m_readingExpires, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_reading = {};
        m_readingExpires = false;
    });
}
