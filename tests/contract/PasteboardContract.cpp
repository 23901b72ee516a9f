#include "contract/PasteboardContract.h"

#include "contract/Expectations.h"
#include "stage/StageProcess.h"

using namespace Qt::StringLiterals;

namespace {

using Row =
    std::function<QString(const PasteboardContract::MakePasteboard &, ClipboardNeighbours &)>;

const QString text = u"é — 🐞 <b>"_s;
const QString html = u"<p>é — 🐞</p>"_s;

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
    others.copy(u"plain"_s, {});
    const ClipboardContents plain = PasteboardContract::read(*pasteboard);
    return Expectations()
        .equal(u"text"_s, rich.text.value_or(QString()), text)
        .equal(u"html"_s, rich.html.value_or(QString()), html)
        .holds(u"items"_s, rich.items && rich.items->value(0).size() >= 2)
        .equal(u"plain"_s, plain.text.value_or(QString()), u"plain"_s)
        .holds(u"no html"_s, !plain.html)
        .holds(u"the count grows"_s, plain.changeCount > rich.changeCount);
}

QString isReadByOthers(const PasteboardContract::MakePasteboard &make,
                       ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"old"_s, {});
    const qint64 before = PasteboardContract::read(*pasteboard).changeCount;
    const auto written = PasteboardContract::write(*pasteboard, text.toUtf8(), html.toUtf8());
    Expectations expect;
    expect.holds(u"written"_s, written.has_value())
        .equal(u"one change"_s, written ? written->changeCount : -1, before + 1)
        .holds(u"ours"_s, pasteboard->use().isOurs)
        .equal(u"others"_s, others.paste(), QStringList{text, html})
        .equal(u"read back"_s, PasteboardContract::read(*pasteboard).text.value_or(QString()),
               text);
    PasteboardContract::write(*pasteboard, "only text", {});
    return expect.equal(u"replaced as a whole"_s, others.paste(),
                        QStringList{u"only text"_s, u"(nothing)"_s});
}

QString overwritesNothingItDoesNotKnow(const PasteboardContract::MakePasteboard &make,
                                       ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"old"_s, {});
    const ClipboardContents old = PasteboardContract::read(*pasteboard);
    others.copy(u"newer"_s, {});
    const auto refused = PasteboardContract::write(*pasteboard, "link", {}, old.changeCount);
    Expectations expect;
    expect.holds(u"refused"_s, !refused).equal(u"kept"_s, others.paste().constFirst(), u"newer"_s);
    const ClipboardContents newer = PasteboardContract::read(*pasteboard);
    const auto written = PasteboardContract::write(*pasteboard, "link", {}, newer.changeCount);
    return expect.holds(u"written"_s, written.has_value())
        .equal(u"link"_s, others.paste().constFirst(), u"link"_s);
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
    expect.holds(u"restored"_s, restored.has_value())
        .equal(u"back"_s, others.paste(), QStringList{text, html});
    const auto again = PasteboardContract::write(*pasteboard, "link", {});
    others.copy(u"user's own"_s, {});
    const auto late = PasteboardContract::restore(*pasteboard, *original.items, again->changeCount);
    return expect.holds(u"not over a new copy"_s, !late)
        .equal(u"the new copy"_s, others.paste().constFirst(), u"user's own"_s);
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
        .holds(u"fetched"_s, waitFor([&] {
                   const PasteboardUse use = pasteboard->use();
                   return use.latest && *use.latest >= before && !use.transferRunning;
               }))
        .holds(u"told"_s, waitFor([&] { return news > 0; }))
        .holds(u"still ours"_s, pasteboard->use().isOurs);
    others.copy(u"theirs"_s, {});
    expect.holds(u"lost"_s, waitFor([&] { return !pasteboard->use().isOurs; }));
    pasteboard->onUseChange(nullptr);
    return expect;
}

QString endsWithTheUsersClipboard(const PasteboardContract::MakePasteboard &make,
                                  ClipboardNeighbours &others) {
    const auto pasteboard = make();
    others.copy(u"user's"_s, {});
    const ClipboardContents original = PasteboardContract::read(*pasteboard);
    PasteboardContract::write(*pasteboard, "link", {}, original.changeCount);
    others.copy(u"newer"_s, {});
    pasteboard->finish(*original.items);
    return Expectations().equal(u"a newer copy stays"_s, others.paste().constFirst(), u"newer"_s);
}

} // namespace

QMap<QString, Row> PasteboardContract::rows() {
    return {{u"reads what others copy"_s, readsWhatOthersCopy},
            {u"is read by others"_s, isReadByOthers},
            {u"overwrites nothing it does not know"_s, overwritesNothingItDoesNotKnow},
            {u"gives back what was there"_s, givesBackWhatWasThere},
            {u"tells who takes it"_s, tellsWhoTakesIt},
            {u"ends with the user's clipboard"_s, endsWithTheUsersClipboard}};
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
