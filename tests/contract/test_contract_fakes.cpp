#include "contract/HotkeysContract.h"
#include "contract/PasteboardContract.h"
#include "fakes/FakePlatform.h"

#include <QTest>

namespace {

/// The other programs, at the clipboard of a fake.
class Neighbours : public ClipboardNeighbours {
public:
    explicit Neighbours(FakePasteboard &pasteboard) : m_pasteboard(pasteboard) {}

    void copy(const QString &text, const QString &html) override {
        m_pasteboard.copyText(text, html);
    }
    QStringList paste() override {
        m_pasteboard.beUsed({m_pasteboard.used.isOurs, m_pasteboard.clock->now(), false});
        return {m_pasteboard.text(PasteboardType::String).value_or("(nothing)"),
                m_pasteboard.text(PasteboardType::Html).value_or("(nothing)")};
    }

private:
    FakePasteboard &m_pasteboard;
};

/// Hands on no keyboard, and a program that takes what is free.
class HotkeyUsers : public HotkeyNeighbours {
public:
    explicit HotkeyUsers(FakeHotkeys &hotkeys) : m_hotkeys(hotkeys) {}

    void press(const KeyCombo &combo, bool) override {
        for (const auto &[bound, pressed] : m_hotkeys.registered) {
            if (bound == combo)
                pressed();
        }
    }
    bool take(const KeyCombo &combo) override {
        const auto has = [&](const auto &one) { return one.first == combo; };
        const bool isFree =
            std::none_of(m_hotkeys.registered.begin(), m_hotkeys.registered.end(), has);
        m_hotkeys.taken = isFree ? QList<KeyCombo>{combo} : QList<KeyCombo>();
        return isFree;
    }

private:
    FakeHotkeys &m_hotkeys;
};

} // namespace

/// The fakes do what the backends do, as far as the contracts tell.
class TestContractFakes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pasteboard_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : PasteboardContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }

    void pasteboard() {
        QFETCH(QString, row);
        const auto fake = std::make_shared<FakePasteboard>();
        fake->clock = std::make_shared<ManualDispatch>();
        fake->clock->advance(std::chrono::hours(24 * 365 * 100)); // later than the real clock
        Neighbours neighbours(*fake);
        QCOMPARE(PasteboardContract::rows()[row]([&] { return fake; }, neighbours), QString());
    }

    void hotkeys_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : HotkeysContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }

    void hotkeys() {
        QFETCH(QString, row);
        FakeHotkeys fake;
        HotkeyUsers users(fake);
        QCOMPARE(HotkeysContract::rows()[row](fake, users), QString());
    }
};

QTEST_GUILESS_MAIN(TestContractFakes)
#include "test_contract_fakes.moc"
