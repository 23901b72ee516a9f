#include "model/HotkeyFormat.h"
#include "model/HotkeyWords.h"
#include "model/PasteFormat.h"
#include "model/TypeEmojiMapping.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

class TestModelValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsPasteFormats_data();
    void readsPasteFormats();
    void namesKeys();
    void describesHotkeys();
    void describesHotkeysInWords_data();
    void describesHotkeysInWords();
    void convertsModifierFlags();
    void findsEmoji_data();
    void findsEmoji();
    void keepsDefaultRows();
    void storesMappings();
    void decodesMappings_data();
    void decodesMappings();
};

void TestModelValues::readsPasteFormats_data() {
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("displayName");

    QTest::newRow("rich link") << u"richLink"_s << u"Rich Link"_s;
    QTest::newRow("Markdown") << u"markdown"_s << u"Markdown"_s;
    QTest::newRow("plain text") << u"plainText"_s << u"Plain Text"_s;
    QTest::newRow("URL only") << u"urlOnly"_s << u"URL Only"_s;
    QTest::newRow("other letter case") << u"RichLink"_s << QString();
    QTest::newRow("display name") << u"Rich Link"_s << QString();
    QTest::newRow("empty") << u""_s << QString();
}

void TestModelValues::readsPasteFormats() {
    QFETCH(QString, raw);
    const auto format = PasteFormats::fromRawValue(raw);
    QTEST(format ? PasteFormats::displayName(*format) : QString(), "displayName");
    if (format)
        QCOMPARE(PasteFormats::rawValue(*format), raw);
}

void TestModelValues::namesKeys() {
    // By key code, as the keys of an ANSI keyboard are numbered; "-" for those without a name.
    QString names;
    for (quint32 keyCode = 0; keyCode <= 53; ++keyCode) {
        const QString name = HotkeyFormat::keyCodeToString(keyCode);
        names += name == u"key %1"_s.arg(keyCode) ? u"-"_s : name;
    }
    QCOMPARE(names, u"ASDFHGZXCV-BQWERYT123465-97-80-OU-IP\u21A9LJ-K----NM-\u21E5Space---\u238B"_s);
    QCOMPARE(HotkeyFormat::keyCodeToString(122), u"key 122"_s);
    QCOMPARE(HotkeyFormat::keyCodeToString(4294967295), u"key 4294967295"_s);
}

void TestModelValues::describesHotkeys() {
    QCOMPARE(HotkeyFormat::describe(9, 6400), u"\u2303\u2325\u2318V"_s);
    QCOMPARE(HotkeyFormat::describe(49, 0x1B00), u"\u2303\u2325\u21E7\u2318Space"_s);
    QCOMPARE(HotkeyFormat::describe(9, 0xFFFFE4FF), u"V"_s);
}

void TestModelValues::describesHotkeysInWords_data() {
    QTest::addColumn<quint32>("keyCode");
    QTest::addColumn<quint32>("modifiers");
    QTest::addColumn<QString>("words");

    using namespace HotkeyFormat;
    const auto row = [](quint32 keyCode, quint32 modifiers, const char *words) {
        QTest::newRow(words) << keyCode << modifiers << QString::fromUtf8(words);
    };
    row(9, controlKey | optionKey | cmdKey, "Ctrl+Alt+Super+V");
    row(29, controlKey | optionKey | shiftKey | cmdKey, "Ctrl+Alt+Shift+Super+0");
    row(0, cmdKey, "Super+A");
    row(36, 0, "Return");
    row(49, 0xFFFFE4FF, "Space");
    // What keyboards have beside letters and digits.
    for (const auto &[keyCode, words] : {std::pair{48U, "Tab"},
                                         {51U, "Backspace"},
                                         {53U, "Escape"},
                                         {76U, "Keypad Enter"},
                                         {114U, "Insert"},
                                         {117U, "Delete"},
                                         {115U, "Home"},
                                         {119U, "End"},
                                         {116U, "Page Up"},
                                         {121U, "Page Down"},
                                         {123U, "Left"},
                                         {124U, "Right"},
                                         {125U, "Down"},
                                         {126U, "Up"},
                                         {122U, "F1"},
                                         {120U, "F2"},
                                         {99U, "F3"},
                                         {118U, "F4"},
                                         {96U, "F5"},
                                         {97U, "F6"},
                                         {98U, "F7"},
                                         {100U, "F8"},
                                         {101U, "F9"},
                                         {109U, "F10"},
                                         {103U, "F11"},
                                         {111U, "F12"},
                                         {82U, "Keypad 0"},
                                         {92U, "Keypad 9"},
                                         {27U, "-"},
                                         {24U, "="},
                                         {43U, ","},
                                         {47U, "."},
                                         {10U, "<"},
                                         {63U, "key 63"}})
        row(keyCode, 0, words);
}

void TestModelValues::describesHotkeysInWords() {
    QFETCH(quint32, keyCode);
    QFETCH(quint32, modifiers);
    QTEST(hotkeyInWords(keyCode, modifiers), "words");
}

void TestModelValues::convertsModifierFlags() {
    QCOMPARE(HotkeyFormat::carbonModifiers(0x20000), HotkeyFormat::shiftKey);
    QCOMPARE(HotkeyFormat::carbonModifiers(0x40000), HotkeyFormat::controlKey);
    QCOMPARE(HotkeyFormat::carbonModifiers(0x80000), HotkeyFormat::optionKey);
    QCOMPARE(HotkeyFormat::carbonModifiers(0x100000), HotkeyFormat::cmdKey);
    QCOMPARE(HotkeyFormat::carbonModifiers(0xFFFFFFFF), 0x1B00U);
    QCOMPARE(HotkeyFormat::carbonModifiers(0xFFE1FFFF), 0U);
}

void TestModelValues::findsEmoji_data() {
    QTest::addColumn<QList<TypeEmojiMapping>>("mappings");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("emoji");

    const QList<TypeEmojiMapping> &defaults = defaultTypeEmojiMappings();
    QTest::newRow("default row") << defaults << u"Bug"_s << u"\U0001F41B"_s;
    QTest::newRow("other letter case") << defaults << u"bUG"_s << u"\U0001F41B"_s;
    QTest::newRow("with its hyphen") << defaults << u"sub-task"_s << u"\U0001F517"_s;
    QTest::newRow("without its hyphen") << defaults << u"Subtask"_s << QString();
    QTest::newRow("empty list") << QList<TypeEmojiMapping>{} << u"Bug"_s << QString();

    using Mapping = TypeEmojiMapping;
    const QList<Mapping> twice{{.type = u"Story"_s, .emoji = u"A"_s},
                               {.type = u"story"_s, .emoji = u"B"_s}};
    QTest::newRow("first of two") << twice << u"Story"_s << u"A"_s;
    const QList<Mapping> spaced{{.type = u"Bug "_s, .emoji = u"A"_s}};
    QTest::newRow("row with a space") << spaced << u"Bug"_s << QString();
    const QList<Mapping> accented{{.type = u"\u00C9PIC"_s, .emoji = u"A"_s}};
    QTest::newRow("letters beyond ASCII") << accented << u"\u00E9pic"_s << u"A"_s;
    const QList<Mapping> untyped{{.type = u""_s, .emoji = u"A"_s}};
    QTest::newRow("row without a type, issue without one") << untyped << u""_s << u"A"_s;
}

void TestModelValues::findsEmoji() {
    QFETCH(QList<TypeEmojiMapping>, mappings);
    QFETCH(QString, type);
    QTEST(emojiForType(mappings, type), "emoji");
}

void TestModelValues::keepsDefaultRows() {
    const QList<TypeEmojiMapping> &first = defaultTypeEmojiMappings();
    QCOMPARE(defaultTypeEmojiMappings(), first);
    QStringList rows;
    QSet<QUuid> ids;
    for (const TypeEmojiMapping &row : first) {
        rows.append(row.type + u' ' + row.emoji);
        ids.insert(row.id);
    }
    QCOMPARE(rows.join(u", "), u"Bug \U0001F41B, Story \U0001F4D6, Task \u2705, Epic \U0001F3AF, "
                               u"Sub-task \U0001F517"_s);
    QCOMPARE(ids.size(), 5);
    QVERIFY(!ids.contains(QUuid()));
}

void TestModelValues::storesMappings() {
    QList<TypeEmojiMapping> mappings = defaultTypeEmojiMappings();
    mappings.append({QUuid(), u"a\"\\/\n\u00E4"_s, u""_s});
    QCOMPARE(decodeTypeEmojiMappings(encodeTypeEmojiMappings(mappings)), mappings);
    QCOMPARE(decodeTypeEmojiMappings(encodeTypeEmojiMappings({})), QList<TypeEmojiMapping>());

    const QUuid id(u"{abcdef01-2345-6789-abcd-ef0123456789}"_s);
    QVERIFY(encodeTypeEmojiMappings({{id, u"Bug"_s, u"x"_s}})
                .contains("\"ABCDEF01-2345-6789-ABCD-EF0123456789\""));
}

void TestModelValues::decodesMappings_data() {
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("decodes");

    const auto row = [](const char *name, const QByteArray &json, bool decodes) {
        QTest::newRow(name) << json << decodes;
    };
    const auto withId = [](const QByteArray &id) -> QByteArray {
        return "[{\"emoji\":\"x\",\"type\":\"Bug\",\"id\":" + id + "}]";
    };
    const QByteArray rest = ",\"id\":\"ABCDEF01-2345-6789-ABCD-EF0123456789\"}]";
    row("upper-case id", withId("\"ABCDEF01-2345-6789-ABCD-EF0123456789\""), true);
    row("lower-case id", withId("\"abcdef01-2345-6789-abcd-ef0123456789\""), true);
    row("id of zeros", withId("\"00000000-0000-0000-0000-000000000000\""), true);
    row("unknown member besides", "[{\"type\":\"Bug\",\"emoji\":\"x\",\"more\":1" + rest, true);
    row("id in braces", withId("\"{abcdef01-2345-6789-abcd-ef0123456789}\""), false);
    row("id without hyphens", withId("\"abcdef0123456789abcdef0123456789\""), false);
    row("hyphens in other places", withId("\"abcdef012-345-6789-abcd-ef0123456789\""), false);
    row("id with a letter beyond f", withId("\"gbcdef01-2345-6789-abcd-ef0123456789\""), false);
    row("id with a line feed", withId("\"abcdef01-2345-6789-abcd-ef0123456789\\n\""), false);
    row("id is a number", withId("1"), false);
    row("no id", "[{\"type\":\"Bug\",\"emoji\":\"x\"}]", false);
    row("no emoji", "[{\"type\":\"Bug\"" + rest, false);
    row("no type", "[{\"emoji\":\"x\"" + rest, false);
    row("emoji is null", "[{\"type\":\"Bug\",\"emoji\":null" + rest, false);
    row("type is a number", "[{\"type\":1,\"emoji\":\"x\"" + rest, false);
    row("row is a text", "[\"Bug\"]", false);
    row("an object", "{}", false);
    row("no JSON", "[", false);
    row("no bytes", "", false);
    row("second row broken", withId("\"ABCDEF01-2345-6789-ABCD-EF0123456789\"").chopped(1) + ",{}]",
        false);
}

void TestModelValues::decodesMappings() {
    QFETCH(QByteArray, json);
    QFETCH(bool, decodes);
    const auto mappings = decodeTypeEmojiMappings(json);
    QCOMPARE(mappings.has_value(), decodes);
    if (decodes) {
        QCOMPARE(mappings->size(), 1);
        QCOMPARE(mappings->first().type, u"Bug"_s);
        QCOMPARE(mappings->first().emoji, u"x"_s);
    }
}

QTEST_GUILESS_MAIN(TestModelValues)
#include "test_model_values.moc"
