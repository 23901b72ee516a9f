#include "enrichment/TemplateRendering.h"

#include <QTest>

using namespace Qt::StringLiterals;

using Enrichment::TemplateValues;

namespace {

const QString ladybird = u"\U0001F41E"_s;
const QString balloon = u"\U0001F4AC"_s;
const QString eightWords = u"one two three four five six seven eight"_s;

const TemplateValues crash{.key = u"ABC-1"_s,
                           .type = u"Bug"_s,
                           .summary = u"Crash"_s,
                           .status = u"In Progress"_s,
                           .commentText = eightWords,
                           .commentAuthor = u"Ann"_s};

TemplateValues asComment(TemplateValues values) {
    values.isComment = true;
    return values;
}

TemplateValues withSummary(const QString &summary) {
    TemplateValues values = crash;
    values.summary = summary;
    return values;
}

QString render(const QString &templateText, const TemplateValues &values) {
    const QList<TypeEmojiMapping> mappings{{.type = u"bug"_s, .emoji = ladybird}};
    return Enrichment::renderTemplate(templateText, values, mappings, balloon);
}

TemplateValues bare() {
    return {.key = u"ABC-1"_s, .summary = u"Crash"_s};
}

} // namespace

class TestEnrichmentTemplates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fillsJiraTemplates_data() {
        QTest::addColumn<QString>("templateText");
        QTest::addColumn<TemplateValues>("values");
        QTest::addColumn<QString>("text");

        const QString withEmoji = u"{type-emoji} {key}: {summary} - {status}"_s;
        TemplateValues story = crash;
        story.type = u"Story"_s;
        QTest::newRow("type without an emoji")
            << withEmoji << story << u"ABC-1: Crash - In Progress"_s;
        QTest::newRow("default template without a type")
            << u"{key} - {TYPE} - {summary}"_s << bare() << u"ABC-1 - Crash"_s;
        QTest::newRow("upper case beyond ASCII")
            << u"{TYPE}"_s << TemplateValues{.type = u"ma\u00DF \u00E9"_s} << u"MASS \u00C9"_s;
        QTest::newRow("status in both cases")
            << u"{STATUS} {status}"_s << crash << u"IN PROGRESS In Progress"_s;
        QTest::newRow("every occurrence")
            << u"{key}{key} {key}"_s << crash << u"ABC-1ABC-1 ABC-1"_s;
        QTest::newRow("no placeholders")
            << u"{Key} {} {key key}"_s << crash << u"{Key} {} {key key}"_s;
        QTest::newRow("comment values without a comment link")
            << u"{commenter-name} {commenttext}{comment-emoji}"_s << crash
            << u"\uE000Ann\uE001 \uE000\u201Cone two three four five six seven\u2026\u201D\uE001"_s;
        QTest::newRow("comment emoji")
            << u"{comment-emoji}{key}"_s << asComment(crash) << QString(balloon + u"ABC-1"_s);
        QTest::newRow("absent and empty comment values")
            << u"[{commenter-name}{commenttext}]"_s
            << TemplateValues{.isComment = true, .commentText = u" \n"_s, .commentAuthor = u""_s}
            << u"[]"_s;
        QTest::newRow("style tags") << u"<b>{key}</b> <i>{summary}</i>"_s << crash
                                    << u"\uE002ABC-1\uE003 \uE000Crash\uE001"_s;
        QTest::newRow("style tags from a value")
            << u"{summary}"_s << withSummary(u"<b>x</b>"_s) << u"\uE002x\uE003"_s;
        QTest::newRow("placeholders from a value: later ones only")
            << u"{summary}"_s << withSummary(u"{key} {type-emoji}"_s)
            << QString(u"{key} "_s + ladybird);
        QTest::newRow("comment tags from a value stay")
            << u"{summary}"_s << withSummary(u"<c>x</c>"_s) << u"<c>x</c>"_s;
    }

    void fillsJiraTemplates() {
        QFETCH(QString, templateText);
        QFETCH(TemplateValues, values);
        QTEST(render(templateText, values), "text");
    }

    void resolvesCommentBlocks_data() {
        QTest::addColumn<QString>("templateText");
        QTest::addColumn<QString>("withoutComment");
        QTest::addColumn<QString>("withComment");

        QTest::newRow("block at the end")
            << u"{key}<c> \U0001F4AC {commenter-name}: {commenttext}</c>"_s << u"ABC-1"_s
            << u"ABC-1 \U0001F4AC \uE000Ann\uE001: \uE000\u201Cone two three four five six "
               u"seven\u2026\u201D\uE001"_s;
        QTest::newRow("block over two lines") << u"a<c>\nb\n</c>c"_s << u"ac"_s << u"a\nb\nc"_s;
        QTest::newRow("nested opening tag") << u"a<c>b<c>c</c>d"_s << u"ad"_s << u"abcd"_s;
        QTest::newRow("never closed") << u"a<c>b"_s << u"ab"_s << u"ab"_s;
        QTest::newRow("never opened") << u"a</c>b"_s << u"ab"_s << u"ab"_s;
        QTest::newRow("wrong way round") << u"a</c>b<c>c"_s << u"abc"_s << u"abc"_s;
        QTest::newRow("backslashes in a block") << u"<c>\\1 \\0</c>"_s << QString() << u"\\1 \\0"_s;
        QTest::newRow("tags in upper case") << u"<C>a</C>"_s << u"<C>a</C>"_s << u"<C>a</C>"_s;
    }

    void resolvesCommentBlocks() {
        QFETCH(QString, templateText);
        QTEST(render(templateText, crash), "withoutComment");
        QTEST(render(templateText, asComment(crash)), "withComment");
    }

    void tidiesUp_data() {
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QString>("tidied");
        QTest::addColumn<QString>("tidiedConfluence"); // keeps its empty segments

        const auto row = [](const char *name, const QString &raw, const QString &tidied,
                            const QString &confluence) {
            QTest::newRow(name) << raw << tidied << confluence;
        };
        row("empty segment", u"a -  - b"_s, u"a - b"_s, u"a - - b"_s);
        row("segment of newlines", u"a\n-\t\n-\nb"_s, u"a - b"_s, u"a\n-\t\n-\nb"_s);
        row("two empty segments", u"a -  -  - b"_s, u"a - - b"_s, u"a - - - b"_s);
        row("segments with text", u"a - b - c-d -- e"_s, u"a - b - c-d -- e"_s,
            u"a - b - c-d -- e"_s);
        row("hyphens without space between", u"a - -b"_s, u"a - -b"_s, u"a - -b"_s);
        row("empty segment at the end", u"a - - "_s, u"a -"_s, u"a - -"_s);
        row("runs of spaces", u"  a   b "_s, u"a b"_s, u"a b"_s);
        row("newlines and tabs within", u"a \n b\t\tc"_s, u"a \n b\t\tc"_s, u"a \n b\t\tc"_s);
        row("newlines at the ends", u" \n a\t \n"_s, u"\n a\t \n"_s, u"\n a\t \n"_s);
        row("no-break spaces", u"\u00A0a\u00A0\u00A0b\u00A0"_s, u"a\u00A0\u00A0b"_s,
            u"a\u00A0\u00A0b"_s);
        row("spaces around a marker", u" <i> a</i>"_s, u"\uE000 a\uE001"_s, u"\uE000 a\uE001"_s);
    }

    void tidiesUp() {
        QFETCH(QString, raw);
        QTEST(render(raw, bare()), "tidied");
        QTEST(render(u"{summary}"_s, withSummary(raw)), "tidied");
        QTEST(Enrichment::renderConfluenceTemplate(raw, {}, {}, {}, {}), "tidiedConfluence");
    }

    void fillsConfluenceTemplates_data() {
        QTest::addColumn<QString>("templateText");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("space");
        QTest::addColumn<QString>("text");

        QTest::newRow("title and space")
            << u"{title} ({space})"_s << u"Runbook"_s << u"OPS"_s << u"Runbook (OPS)"_s;
        QTest::newRow("default template without a space")
            << u"{title} \u2014 {space}"_s << u"Runbook"_s << QString() << u"Runbook \u2014"_s;
        QTest::newRow("style and type") << u"<b>{title}</b> \u00B7 {type}"_s << u"Runbook"_s
                                        << u"OPS"_s << u"\uE002Runbook\uE003 \u00B7 Blog"_s;
        QTest::newRow("placeholders in the title")
            << u"{title}"_s << u"{id}{title}"_s << u"OPS"_s << u"98{title}"_s;
        QTest::newRow("style tag in the title")
            << u"{title}"_s << u"<i>x"_s << u"OPS"_s << u"\uE000x"_s;
        QTest::newRow("what only Jira templates know")
            << u"{key} <c>{TYPE}</c>"_s << u"x"_s << u"y"_s << u"{key} <c>{TYPE}</c>"_s;
    }

    void fillsConfluenceTemplates() {
        QFETCH(QString, templateText);
        QFETCH(QString, title);
        QFETCH(QString, space);
        QTEST(Enrichment::renderConfluenceTemplate(templateText, title, space, u"Blog"_s, u"98"_s),
              "text");
    }

    void cutsComments_data() {
        QTest::addColumn<QString>("comment");
        QTest::addColumn<QString>("snippet");

        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("white space") << u" \n\u00A0"_s << QString();
        QTest::newRow("seven words") << u"1 2 3 4 5 6 7 \n"_s << u"\u201C1 2 3 4 5 6 7\u201D"_s;
        QTest::newRow("eight words, white space of all kinds")
            << u"1\n2\t3\u30004\u00A05\r\n6  7 8"_s << u"\u201C1 2 3 4 5 6 7\u2026\u201D"_s;
    }

    void cutsComments() {
        QFETCH(QString, comment);
        QTEST(Enrichment::commentSnippet(comment), "snippet");
        QCOMPARE(Enrichment::commentSnippet(std::nullopt), QString());
    }
};

QTEST_GUILESS_MAIN(TestEnrichmentTemplates)
#include "test_enrichment_templates.moc"
