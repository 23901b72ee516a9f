#include "fakes/FakePlatform.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/ResultLine.h"
#include "preferences/kit/SelectableLabel.h"
#include "preferences/kit/Style.h"
#include "preferences/kit/WrappingText.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>

namespace {

using Style::ColourRole;

/// The entries of the context menu of `widget`, and whether they can act; the one called `chosen`
/// is chosen.
QStringList contextMenu(QWidget *widget, const QString &chosen = {}) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), widget->mapToGlobal(QPoint()));
    QApplication::sendEvent(widget, &event);
    QStringList entries;
    for (auto *menu : widget->findChildren<QMenu *>()) {
        for (QAction *action : menu->actions()) {
            if (action->isSeparator())
                continue;
            const QString title = action->text().remove('&').section('\t', 0, 0);
            entries.append(title + (action->isEnabled() ? "" : " (off)"));
            if (title == chosen)
                action->trigger();
        }
        delete menu;
    }
    return entries;
}

} // namespace

class TestPreferencesKit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textsReadOnEveryAccent_data() {
        QTest::addColumn<QColor>("accent");
        QTest::addColumn<QColor>("onAccent");
        QTest::newRow("the toolkit's blue") << QColor(0x30, 0x8c, 0xc6) << QColor(Qt::white);
        QTest::newRow("blue") << QColor(0x35, 0x84, 0xe4) << QColor(Qt::white);
        QTest::newRow("light blue") << QColor(0x3d, 0xae, 0xe9) << QColor(Qt::black);
        QTest::newRow("green") << QColor(0x87, 0xa5, 0x56) << QColor(Qt::black);
        QTest::newRow("yellow") << QColor(0xf6, 0xd3, 0x2d) << QColor(Qt::black);
        QTest::newRow("red") << QColor(0xe0, 0x1b, 0x24) << QColor(Qt::white);
        QTest::newRow("purple") << QColor(0x91, 0x41, 0xac) << QColor(Qt::white);
        QTest::newRow("slate") << QColor(0x6f, 0x83, 0x96) << QColor(Qt::white);
        QTest::newRow("white") << QColor(Qt::white) << QColor(Qt::black);
        QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::white);
    }
    void textsReadOnEveryAccent() {
        QFETCH(QColor, accent);
        QFETCH(QColor, onAccent);
        for (const char *ground : {"#efefef", "#ffffff", "#2b2c30", "#000000", "#3d3d3d"}) {
            QPalette palette{QColor(ground)};
            palette.setColor(QPalette::Highlight, accent);
            const auto colour = [&](ColourRole role) { return Style::colour(role, palette); };
            QCOMPARE(colour(ColourRole::OnAccent), onAccent);
            for (const auto &[text, below] :
                 {std::pair{colour(ColourRole::OnAccent), colour(ColourRole::AccentFill)},
                  std::pair{colour(ColourRole::Link), palette.color(QPalette::Window)},
                  std::pair{colour(ColourRole::Warning), palette.color(QPalette::Window)}}) {
                QVERIFY2(Style::contrast(text, below) >= 4.5,
                         qPrintable(QString("%1 on %2 with %3")
                                        .arg(text.name(), below.name(), QString(ground))));
            }
            QCOMPARE(colour(ColourRole::Accent), accent);
        }
        QVERIFY(Style::contrast(Qt::white, Qt::black) > 20.9);
        QCOMPARE(Style::contrast(Qt::gray, Qt::gray), 1.0);
    }

    void theTitleOfAButtonReadsUnderThePointer() {
        Button button("Save Token");
        button.setKind(Button::Kind::Prominent);
        button.show();
        const auto ground = [&] { return button.grab().toImage().pixelColor(8, 8); };
        const QColor usual = ground();
        QVERIFY(Style::contrast(Qt::white, usual) >= 4.5);
        button.setDown(true);
        QVERIFY(Style::contrast(Qt::white, ground()) > Style::contrast(Qt::white, usual));
    }

    void onlyTheSymbolOfAResultIsColoured() {
        QWidget window;
        ResultLine line(&window);
        window.resize(300, 60);
        window.show();
        const auto *text = line.findChild<QLabel *>();
        using State = ResultLine::State;
        for (const auto &[state, role] : {std::pair{State::Success, ColourRole::Success},
                                          std::pair{State::Warning, ColourRole::Warning}}) {
            line.setResult(state, "A text.");
            line.resize(280, 40);
            QCOMPARE(text->palette().color(QPalette::WindowText),
                     window.palette().color(QPalette::WindowText));
            const QImage picture = line.grab().toImage();
            const int hue = Style::colour(role, window.palette()).hsvHue();
            int coloured = 0;
            int colouredText = 0;
            for (int x = 0; x < picture.width(); ++x) {
                for (int y = 0; y < picture.height(); ++y) {
                    const QColor pixel = picture.pixelColor(x, y);
                    if (pixel.hsvSaturation() > 100 && qAbs(pixel.hsvHue() - hue) < 10)
                        ++(x < text->x() ? coloured : colouredText);
                }
            }
            QVERIFY(coloured > 5);
            QCOMPARE(colouredText, 0);
        }
    }

    void labelsAreSelectedAndCopied() {
        SelectableLabel label(Qt::RichText);
        label.setText("<b>Network</b> error");
        label.show();
        QVERIFY(QTest::qWaitForWindowActive(&label));
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->clear();
        QCOMPARE(contextMenu(&label), QStringList({"Copy (off)", "Select All"}));
        contextMenu(&label, "Select All");
        QCOMPARE(label.selectedText(), "Network error");
        QCOMPARE(contextMenu(&label, "Copy"), QStringList({"Copy", "Select All"}));
        QCOMPARE(clipboard->text(), "Network error");
        QVERIFY(clipboard->mimeData()->hasHtml());

        clipboard->clear();
        label.setText("again");
        label.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&label, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&label, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard->text(), "again");
    }

    void textsAreMeasuredAnewWhenTheyChange() {
        Caption caption("short");
        WrappingText text("Text");
        text.setPlainText("short");
        const int captionHeight = caption.heightForWidth(100);
        const int textHeight = text.heightForWidth(100);
        caption.setText(QString("long ").repeated(20));
        text.setPlainText(caption.text());
        QVERIFY(caption.heightForWidth(100) > 2 * captionHeight);
        QVERIFY(text.heightForWidth(100) > 2 * textHeight);
    }
};

QTEST_MAIN(TestPreferencesKit)
#include "test_preferences_kit.moc"
