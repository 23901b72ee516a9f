#include "model/AttributedText.h"
#include "model/MarkedText.h"
#include "model/Text.h"

#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

using Run = AttributedText::Run;

class TestModelText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trims_data();
    void trims();
    void countsCharacters_data();
    void countsCharacters();
    void splitsIntoWords();
    void convertsMarkedText_data();
    void convertsMarkedText();
    void marksText();
    void makesRuns_data();
    void makesRuns();
    void writesRtf_data();
    void writesRtf();
    void linksRtf_data();
    void linksRtf();
};

void TestModelText::trims_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmed");
    QTest::addColumn<QString>("withoutSpaces");

    QTest::newRow("empty") << u""_s << u""_s << u""_s;
    QTest::newRow("nothing to trim") << u"a b"_s << u"a b"_s << u"a b"_s;
    QTest::newRow("only white space") << u" \t\n "_s << u""_s << u"\n"_s;
    QTest::newRow("spaces and tabs") << u" \t a \t"_s << u"a"_s << u"a"_s;
    QTest::newRow("no-break and ideographic spaces")
        << u"\u00A0\u2003a\u3000\u202F"_s << u"a"_s << u"a"_s;
    QTest::newRow("newlines within spaces") << u" \r\n a\v\f "_s << u"a"_s << u"\r\n a\v\f"_s;
    QTest::newRow("next line and separators")
        << u"\u0085\u2028a\u2029"_s << u"a"_s << u"\u0085\u2028a\u2029"_s;
    QTest::newRow("format characters and NUL are no white space")
        << u"\uFEFF\u200Ba"_s + QChar(u'\0') << u"\uFEFF\u200Ba"_s + QChar(u'\0')
        << u"\uFEFF\u200Ba"_s + QChar(u'\0');
}

void TestModelText::trims() {
    QFETCH(QString, text);
    QTEST(Text::trimmed(text), "trimmed");
    QTEST(Text::trimmedView(text).toString(), "trimmed");
    QTEST(Text::trimmedSpaces(text), "withoutSpaces");
}

void TestModelText::countsCharacters_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<QString>("firstTwo");

    QTest::newRow("empty") << u""_s << qsizetype{0} << u""_s;
    QTest::newRow("fewer than asked for") << u"a"_s << qsizetype{1} << u"a"_s;
    QTest::newRow("ASCII") << u"507f1f77"_s << qsizetype{8} << u"50"_s;
    QTest::newRow("combining accents")
        << u"e\u0301e\u0301e"_s << qsizetype{3} << u"e\u0301e\u0301"_s;
    QTest::newRow("surrogate pairs")
        << u"\U0001F41E\U0001F41E\U0001F41E"_s << qsizetype{3} << u"\U0001F41E\U0001F41E"_s;
    QTest::newRow("flags") << u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7!"_s << qsizetype{3}
                           << u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"_s;
    QTest::newRow("carriage return and line feed") << u"a\r\nb"_s << qsizetype{3} << u"a\r\n"_s;
}

void TestModelText::countsCharacters() {
    QFETCH(QString, text);
    QTEST(Text::characterCount(text), "count");
    QTEST(Text::firstCharacters(text, 2), "firstTwo");
}

void TestModelText::splitsIntoWords() {
    const QString text = u"\n one\ttwo\u00A0 three\r\nfour "_s;
    QCOMPARE(Text::words(text), QStringList({u"one"_s, u"two"_s, u"three"_s, u"four"_s}));
    QCOMPARE(Text::words(text, 2), QStringList({u"one"_s, u"two"_s}));
    QCOMPARE(Text::words(text, 0), QStringList());
    QCOMPARE(Text::words(u" \n "), QStringList());
}

void TestModelText::convertsMarkedText_data() {
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QString>("stripped");
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("html");

    QTest::newRow("no markers") << u"a * <b>"_s << u"a * <b>"_s << u"a * <b>"_s << u"a * <b>"_s;
    QTest::newRow("bold") << u"\uE002Done\uE003"_s << u"Done"_s << u"**Done**"_s
                          << u"<b>Done</b>"_s;
    QTest::newRow("italic within text")
        << u"A \uE000b\uE001 c"_s << u"A b c"_s << u"A *b* c"_s << u"A <i>b</i> c"_s;
    QTest::newRow("unbalanced") << u"\uE001x\uE002"_s << u"x"_s << u"*x**"_s << u"</i>x<b>"_s;
    QTest::newRow("other private-use characters")
        << u"\uE004\uF8FF"_s << u"\uE004\uF8FF"_s << u"\uE004\uF8FF"_s << u"\uE004\uF8FF"_s;
}

void TestModelText::convertsMarkedText() {
    QFETCH(QString, marked);
    QTEST(Enrichment::stripStyleMarkers(marked), "stripped");
    QTEST(Enrichment::markdownStyled(marked), "markdown");
    QTEST(Enrichment::htmlStyled(marked), "html");
}

void TestModelText::marksText() {
    QCOMPARE(Enrichment::applyStyleTags(u"<i>a</i><b>b</b> <I><c> < i><<i>"_s),
             u"\uE000a\uE001\uE002b\uE003 <I><c> < i><\uE000"_s);
    QCOMPARE(Enrichment::wrapItalic(u"Ann"_s), u"\uE000Ann\uE001"_s);
    QCOMPARE(Enrichment::wrapItalic(QString()), QString());
}

void TestModelText::makesRuns_data() {
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QList<Run>>("runs");

    QTest::newRow("empty") << u""_s << QList<Run>{};
    QTest::newRow("markers alone") << u"\uE000\uE002\uE001\uE003"_s << QList<Run>{};
    QTest::newRow("no markers") << u"a b"_s << QList<Run>{{u"a b"_s}};
    QTest::newRow("overlapping styles")
        << u"a\uE000b\uE002c\uE001d\uE003e"_s
        << QList<Run>{
               {u"a"_s}, {u"b"_s, true}, {u"c"_s, true, true}, {u"d"_s, false, true}, {u"e"_s}};
    QTest::newRow("a switch, not a counter")
        << u"\uE000\uE000x\uE001y"_s << QList<Run>{{u"x"_s, true}, {u"y"_s}};
    QTest::newRow("stray closing marker") << u"\uE001x"_s << QList<Run>{{u"x"_s}};
    QTest::newRow("never closed") << u"\uE002x"_s << QList<Run>{{u"x"_s, false, true}};
    QTest::newRow("style without text between equals")
        << u"a\uE000\uE001b"_s << QList<Run>{{u"ab"_s}};
}

void TestModelText::makesRuns() {
    QFETCH(QString, marked);
    QTEST(Enrichment::attributedFromMarked(marked).runs(), "runs");
}

void TestModelText::writesRtf_data() {
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QByteArray>("rtf");

    QTest::newRow("empty") << u""_s << QByteArray();
    QTest::newRow("overlapping styles, and spaces at the edges of runs")
        << u" a\uE000 b\uE002c \uE001d\uE003 e "_s << QByteArray(" a{\\i  b}{\\i\\b c }{\\b d} e ");
    QTest::newRow("what RTF itself is written in")
        << u"\\par {x} \\u228?"_s << QByteArray("\\\\par \\{x\\} \\\\u228?");
    QTest::newRow("beyond ASCII, digits after it, and both ends of the signed range")
        << u"\u00E41\u4E2D \u7FFF\u8000\uFFFF"_s
        << QByteArray("\\u228?1\\u20013? \\u32767?\\u-32768?\\u-1?");
    QTest::newRow("emoji") << u"\U0001F41E"_s << QByteArray("\\u-10179?\\u-9186?");
    QTest::newRow("tab and line ends") << u"a\tb\nc\r\nd\re\vf\fg\u2028h\u0085i\u2029"_s
                                       << QByteArray("a\\tab b\\line c\\line d\\line e\\line f"
                                                     "\\line g\\line h\\line i\\line ");
    QTest::newRow("controls and NUL")
        << u"a\u0001\u007F\u009Fb"_s + QChar(u'\0') + u'c' << QByteArray("abc");
    QTest::newRow("lone surrogates, also of a pair torn by a marker")
        << QString(QChar(0xDC1E)) + QChar(0xD83D) + u'\uE000' + QChar(0xDC1E)
        << QByteArray("\\u-3?\\u-3?{\\i \\u-3?}");
}

void TestModelText::writesRtf() {
    QFETCH(QString, marked);
    const QByteArray rtf = Enrichment::attributedFromMarked(marked).toRtf();
    const QByteArray start = "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 "
                             "Helvetica;}}\\uc1\\pard\\f0\\fs24 ";
    QVERIFY(rtf.startsWith(start) && rtf.endsWith('}'));
    QTEST(rtf.sliced(start.size()).chopped(1), "rtf");
}

void TestModelText::linksRtf_data() {
    QTest::addColumn<QUrl>("link");
    QTest::addColumn<QByteArray>("address");

    const auto row = [](const char *name, const QUrl &link, const QByteArray &address) {
        QTest::newRow(name) << link << address;
    };
    row("none", QUrl(), "");
    row("invalid", QUrl(u"https://h/ a b"_s, QUrl::StrictMode), "");
    row("query and fragment", QUrl(u"https://h/a?b=1&c=%20%22#d"_s), "https://h/a?b=1&c=%20%22#d");
    QUrl hostile(u"https://h/"_s);
    hostile.setPath(u"/\"}}{\\par \\\\x\u00E4"_s, QUrl::DecodedMode);
    row("path that would end the field", hostile, "https://h/%22%7D%7D%7B%5Cpar%20%5C%5Cx%C3%A4");
    QUrl odd;
    odd.setScheme(u"x"_s);
    odd.setPath(u"a\"b"_s, QUrl::TolerantMode);
    odd.setFragment(u"`^|'{}"_s, QUrl::TolerantMode);
    row("parts a parser leaves alone", odd, "x:a%22b#%60%5E%7C'%7B%7D");
}

void TestModelText::linksRtf() {
    QFETCH(QUrl, link);
    QFETCH(QByteArray, address);
    AttributedText text = Enrichment::attributedFromMarked(u"a\uE000b\uE001"_s);
    text.setLink(link);
    QVERIFY(text.toRtf().endsWith(address.isEmpty() ? " a{\\i b}}"
                                                    : " {\\field{\\*\\fldinst{HYPERLINK \"" +
                                                          address + "\"}}{\\fldrslt a{\\i b}}}}"));
    AttributedText empty;
    empty.setLink(link);
    QVERIFY(!empty.toRtf().contains("field"));
}

QTEST_GUILESS_MAIN(TestModelText)
#include "test_model_text.moc"
