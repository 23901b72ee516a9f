#include "contract/PasteboardContract.h"

#include "contract/Expectations.h"
#include "stage/StageProcess.h"

namespace {

using Row =
    std::function<QString(const PasteboardContract::MakePasteboard &, ClipboardNeighbours &)>;

const QString text = u"é — 🐞 <b>"_qs;
const QString html = u"<p>é — 🐞</p>"_qs;

template <class Answer, class Ask>
Answer await(const Ask &ask) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    ask([answer](const Answer &given) { *answer = given; });
    waitFor([&] { return answer->has_value(); });
    return answer->value_or(Answer());
}

QString readsWhatOthersCopy(const PasteboardContract::MakePasteboard &make,
                            ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(text, html);
    const ClipboardContents rich = PasteboardContract::read(*pasteboard);
    others.copy(u"plain"_qs, {});
    const ClipboardContents plain = PasteboardContract::read(*pasteboard);
    return Expectations()
        .equal(u"text"_qs, rich.text.value_or(QString()), text)
        .equal(u"html"_qs, rich.html.value_or(QString()), html)
        .holds(u"items"_qs, rich.items && rich.items->value(0).size() >= 2)
        .equal(u"plain"_qs, plain.text.value_or(QString()), u"plain"_qs)
        .holds(u"no html"_qs, !plain.html)
        .holds(u"the count grows"_qs, plain.changeCount > rich.changeCount);
}

QString isReadByOthers(const PasteboardContract::MakePasteboard &make,
                       ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"old"_qs, {});
    const qint64 before = PasteboardContract::read(*pasteboard).changeCount;
    const auto written = PasteboardContract::write(*pasteboard, text.toUtf8(), html.toUtf8());
    Expectations expect;
    expect.holds(u"written"_qs, written.has_value())
        .equal(u"one change"_qs, written ? written->changeCount : -1, before + 1)
        .holds(u"ours"_qs, pasteboard->use().isOurs)
        .equal(u"others"_qs, others.paste(), QStringList{text, html})
        .equal(u"read back"_qs, PasteboardContract::read(*pasteboard).text.value_or(QString()),
               text);
    PasteboardContract::write(*pasteboard, "only text", {});
    return expect.equal(u"replaced as a whole"_qs, others.paste(),
                        QStringList{u"only text"_qs, u"(nothing)"_qs});
}

QString overwritesNothingItDoesNotKnow(const PasteboardContract::MakePasteboard &make,
                                       ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"old"_qs, {});
    const ClipboardContents old = PasteboardContract::read(*pasteboard);
    others.copy(u"newer"_qs, {});
    const auto refused = PasteboardContract::write(*pasteboard, "link", {}, old.changeCount);
    Expectations expect;
    expect.holds(u"refused"_qs, !refused)
        .equal(u"kept"_qs, others.paste().constFirst(), u"newer"_qs);
    const ClipboardContents newer = PasteboardContract::read(*pasteboard);
    const auto written = PasteboardContract::write(*pasteboard, "link", {}, newer.changeCount);
    return expect.holds(u"written"_qs, written.has_value())
        .equal(u"link"_qs, others.paste().constFirst(), u"link"_qs);
}

QString givesBackWhatWasThere(const PasteboardContract::MakePasteboard &make,
                              ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(text, html);
    const ClipboardContents original = PasteboardContract::read(*pasteboard);
    const auto link = PasteboardContract::write(*pasteboard, "link", {});
    const auto restored =
        PasteboardContract::restore(*pasteboard, *original.items, link->changeCount);
    Expectations expect;
    expect.holds(u"restored"_qs, restored.has_value())
        .equal(u"back"_qs, others.paste(), QStringList{text, html});
    const auto again = PasteboardContract::write(*pasteboard, "link", {});
    others.copy(u"user's own"_qs, {});
    const auto late = PasteboardContract::restore(*pasteboard, *original.items, again->changeCount);
    return expect.holds(u"not over a new copy"_qs, !late)
        .equal(u"the new copy"_qs, others.paste().constFirst(), u"user's own"_qs);
}

QString tellsWhoTakesIt(const PasteboardContract::MakePasteboard &make,
                        ClipboardNeighbours &others) {
    const auto pasteboard = make();
    PasteboardContract::write(*pasteboard, "link", {});
    int news = 0;
    pasteboard->onUseChange([&] { ++news; });
    const auto before = Dispatch::Clock::now();
    others.paste();
    Expectations expect;
    expect
        .holds(u"fetched"_qs, waitFor([&] {
                   const PasteboardUse use = pasteboard->use();
                   return use.latest && *use.latest >= before && !use.transferRunning;
               }))
        .holds(u"told"_qs, waitFor([&] { return news > 0; }))
        .holds(u"still ours"_qs, pasteboard->use().isOurs);
    others.copy(u"theirs"_qs, {});
    expect.holds(u"lost"_qs, waitFor([&] { return !pasteboard->use().isOurs; }));
    pasteboard->onUseChange(nullptr);
    return expect;
}

QString endsWithTheUsersClipboard(const PasteboardContract::MakePasteboard &make,
                                  ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"user's"_qs, {});
    const ClipboardContents original = PasteboardContract::read(*pasteboard);
    PasteboardContract::write(*pasteboard, "link", {}, original.changeCount);
    others.copy(u"newer"_qs, {});
    pasteboard->finish(*original.items);
    return Expectations().equal(u"a newer copy stays"_qs, others.paste().constFirst(), u"newer"_qs);
}

} // namespace

QMap<QString, Row> PasteboardContract::rows() {
    return {{u"reads what others copy"_qs, readsWhatOthersCopy},
            {u"is read by others"_qs, isReadByOthers},
            {u"overwrites nothing it does not know"_qs, overwritesNothingItDoesNotKnow},
            {u"gives back what was there"_qs, givesBackWhatWasThere},
            {u"tells who takes it"_qs, tellsWhoTakesIt},
            {u"ends with the user's clipboard"_qs, endsWithTheUsersClipboard}};
}

ClipboardContents PasteboardContract::read(Pasteboard &pasteboard) {
    return await<ClipboardContents>([&](const auto &done) { pasteboard.read(done); });
}

std::optional<PasteboardWrite> PasteboardContract::write(Pasteboard &pasteboard,
                                                         const QByteArray &text,
                                                         const QByteArray &html,
                                                         std::optional<qint64> ifCountIs) {
    QList<std::pair<PasteboardType, QByteArray>> flavours;
    if (!html.isEmpty())
        flavours.append({PasteboardType::Html, html});
    flavours.append({PasteboardType::String, text});
    return await<std::optional<PasteboardWrite>>(
        [&](const auto &done) { pasteboard.write(flavours, ifCountIs, done); });
}

std::optional<PasteboardWrite> PasteboardContract::restore(Pasteboard &pasteboard,
                                                           const QList<PasteboardItem> &items,
                                                           std::optional<qint64> ifCountIs) {
    return await<std::optional<PasteboardWrite>>(
        [&](const auto &done) { pasteboard.restore(items, ifCountIs, done); });
}
