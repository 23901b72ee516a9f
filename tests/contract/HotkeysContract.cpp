#include "contract/HotkeysContract.h"

#include "contract/Expectations.h"
#include "stage/StageProcess.h"

namespace {

constexpr KeyCombo first{9, 6400};  // V
constexpr KeyCombo second{8, 6400}; // C

/// Binds and waits for the outcome; "(none)" if none comes.
QStringList bind(Hotkeys &hotkeys, const QList<KeyCombo> &all, int &presses) {
    std::optional<QStringList> refused;
    hotkeys.bind(
        all, [&presses] { ++presses; }, nullptr,
        [&](const QList<Hotkeys::Refusal> &refusals) {
            refused.emplace();
            for (const Hotkeys::Refusal &one : refusals)
                refused->append(QString::number(one.combo.keyCode) + u' ' + one.reason);
        });
    waitFor([&] { return refused.has_value(); });
    return refused.value_or(QStringList{"(none)"});
}

QString firesOnceForEachPress(Hotkeys &hotkeys, HotkeyNeighbours &others) {
    int presses = 0;
    Expectations expect;
    expect.equal("refused", bind(hotkeys, {first}, presses), QStringList());
    others.press(first, false);
    expect.holds("a press fires", waitFor([&] { return presses == 1; }));
    others.press(first, true);
    expect.holds("a long press fires", waitFor([&] { return presses >= 2; }));
    others.press(first, false);
    waitFor([&] { return presses >= 3; });
    hotkeys.unbind();
    return expect.equal("presses", presses, 3);
}

QString refusesWhatIsTakenAndHasTheRest(Hotkeys &hotkeys, HotkeyNeighbours &others) {
    int presses = 0;
    Expectations expect;
    expect.holds("taken by another", others.take(second))
        .equal("refused", bind(hotkeys, {second, first}, presses),
               QStringList{"8 is taken by another program"});
    others.press(second, false);
    others.press(first, false);
    expect.holds("the other fires", waitFor([&] { return presses > 0; }));
    hotkeys.unbind();
    return expect.equal("presses", presses, 1);
}

QString givesBackWhatItHad(Hotkeys &hotkeys, HotkeyNeighbours &others) {
    int presses = 0;
    int later = 0;
    Expectations expect;
    expect.equal("refused", bind(hotkeys, {first}, presses), QStringList())
        .holds("ours", !others.take(first));
    hotkeys.unbind();
    expect.holds("free again", waitFor([&] { return others.take(first); }))
        .equal("refused another", bind(hotkeys, {second}, later), QStringList());
    others.press(first, false);
    others.press(second, false);
    expect.holds("the next fires", waitFor([&] { return later == 1; }));
    hotkeys.unbind();
    return expect.equal("presses", presses, 0);
}

QString replacesWhatWasBound(Hotkeys &hotkeys, HotkeyNeighbours &others) {
    int presses = 0;
    int later = 0;
    Expectations expect;
    expect.equal("refused", bind(hotkeys, {first}, presses), QStringList())
        .equal("refused then", bind(hotkeys, {second}, later), QStringList());
    others.press(first, false);
    others.press(second, false);
    expect.holds("the new one fires", waitFor([&] { return later > 0; }));
    hotkeys.unbind();
    return expect.equal("old", presses, 0).equal("new", later, 1);
}

} // namespace

QMap<QString, std::function<QString(Hotkeys &, HotkeyNeighbours &)>> HotkeysContract::rows() {
    return {{"fires once for each press", firesOnceForEachPress},
            {"refuses what is taken and has the rest", refusesWhatIsTakenAndHasTheRest},
            {"gives back what it had", givesBackWhatItHad},
            {"replaces what was bound", replacesWhatWasBound}};
}
