#include "enrichment/TemplateRendering.h"

#include <QTest>

using namespace Qt::StringLiterals;

using Enrichment::TemplateValues;

namespace {

const QString ladybird = u"\U0001F41E"_s;
const QString balloon = u"\U0001F4AC"_s;
const QString snippet = u"\uE000\u201Cone two three four five six seven\u2026\u201D\uE001"_s;

const TemplateValues crash{.key = u"ABC-1"_s,
                           .type = u"Bug"_s,
                           .summary = u"Crash"_s,
                           .status = u"In Progress"_s,
                           .commentText =
                               u"one\ntwo\tthree\u3000four\u00A0five\r\nsix  seven eight"_s,
                           .commentAuthor = u"Ann"_s};

TemplateValues withSummary(const QString &summary) {
    TemplateValues values = crash;
    values.summary = summary;
    return values;
}

QString render(const QString &templateText, TemplateValues values, bool isComment = false) {
    const QList<TypeEmojiMapping> mappings{{.type = u"bug"_s, .emoji = ladybird}};
    values.isComment |= isComment;
    return Enrichment::renderTemplate(templateText, values, mappings, balloon);
}

} // namespace

class TestEnrichmentTemplates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fillsJiraTemplates() {
        TemplateValues story = crash;
        story.type = u"Story"_s;
        const TemplateValues bare{.key = u"ABC-1"_s, .summary = u"Crash"_s};
        const TemplateValues whole{.commentText = u"1 2 3 4 5 6 7 \n"_s};
        const TemplateValues blank{.isComment = true, .commentText = u" \n"_s, .commentAuthor = {}};
        const QList<std::tuple<QString, TemplateValues, QString>> cases{
            {u"{type-emoji} {key}: {summary} - {status}"_s, story, u"ABC-1: Crash - In Progress"_s},
            {u"{key} - {TYPE} - {summary}"_s, bare, u"ABC-1 - Crash"_s},
            {u"{TYPE}"_s, {.type = u"ma\u00DF \u00E9"_s}, u"MASS \u00C9"_s},
            {u"{STATUS} {status} {key}{key}"_s, crash, u"IN PROGRESS In Progress ABC-1ABC-1"_s},
            {u"{Key} {} {key key}"_s, crash, u"{Key} {} {key key}"_s},
            {u"{commenter-name} {commenttext}{comment-emoji}"_s, crash,
             u"\uE000Ann\uE001 "_s + snippet},
            {u"{commenttext}"_s, whole, u"\uE000\u201C1 2 3 4 5 6 7\u201D\uE001"_s},
            {u"{comment-emoji}[{commenter-name}{commenttext}]"_s, blank, balloon + u"[]"_s},
            {u"<b>{key}</b> <i>x</i>"_s, crash, u"\uE002ABC-1\uE003 \uE000x\uE001"_s},
            // Of what a value brings along, styles and later placeholders count.
            {u"{summary}"_s, withSummary(u"{key} {type-emoji} <b>x</b> <c>y</c>"_s),
             u"{key} "_s + ladybird + u" \uE002x\uE003 <c>y</c>"_s},
        };
        for (const auto &[templateText, values, text] : cases)
            QCOMPARE(render(templateText, values), text);
    }

    void resolvesCommentBlocks() {
        const QList<std::tuple<QString, QString, QString>> cases{
            {u"{key}<c> {comment-emoji} {commenter-name}: {commenttext}</c>"_s, u"ABC-1"_s,
             u"ABC-1 "_s + balloon + u" \uE000Ann\uE001: "_s + snippet},
            {u"a<c>\nb\n</c>c<c>\\1</c>"_s, u"ac"_s, u"a\nb\nc\\1"_s},
            {u"a<c>b<c>c</c>d"_s, u"ad"_s, u"abcd"_s},
            {u"a<c>b"_s, u"ab"_s, u"ab"_s},
            {u"<C>a</C>"_s, u"<C>a</C>"_s, u"<C>a</C>"_s},
        };
        for (const auto &[templateText, withoutComment, withComment] : cases) {
            QCOMPARE(render(templateText, crash), withoutComment);
            QCOMPARE(render(templateText, crash, true), withComment);
        }
    }

    void tidiesUp() {
        // With what becomes of it in a template for pages, which keeps its empty segments.
        const QList<std::tuple<QString, QString, QString>> cases{
            {u"a -  -  - b"_s, u"a - - b"_s, u"a - - - b"_s},
            {u"a\n-\t\n-\nb"_s, u"a - b"_s, u"a\n-\t\n-\nb"_s},
            {u"a - b - c-d -- e - -f"_s, u"a - b - c-d -- e - -f"_s, u"a - b - c-d -- e - -f"_s},
            {u"a - - "_s, u"a -"_s, u"a - -"_s},
            {u" - - a"_s, u"- a"_s, u"- - a"_s},
            {u"  a   b \n c\t\td\n"_s, u"a b \n c\t\td\n"_s, u"a b \n c\t\td\n"_s},
            {u"\u00A0a\u00A0\u00A0b\u00A0"_s, u"a\u00A0\u00A0b"_s, u"a\u00A0\u00A0b"_s},
            {u" <i> a</i>"_s, u"\uE000 a\uE001"_s, u"\uE000 a\uE001"_s},
        };
        for (const auto &[raw, tidied, tidiedPage] : cases) {
            QCOMPARE(render(raw, crash), tidied);
            QCOMPARE(render(u"{summary}"_s, withSummary(raw)), tidied);
            QCOMPARE(Enrichment::renderConfluenceTemplate(raw, {}, {}, {}, {}), tidiedPage);
        }
    }

    void valuesHaveLaterPlaceholdersFilledIn() {
        const auto with = [](auto TemplateValues::*field, const QString &value) {
            TemplateValues values = crash;
            values.isComment = true;
            values.commentText = u"c"_s;
            values.*field = value;
            return values;
        };
        const QString comment = u"\uE000\u201Cc\u201D\uE001"_s;
        const QList<std::tuple<QString, TemplateValues, QString>> cases{
            {u"{type}"_s, with(&TemplateValues::type, u"a{TYPE}{type}{STATUS}{status}"_s),
             u"a{TYPE}{type}IN PROGRESSIn Progress"_s},
            {u"{TYPE}"_s, with(&TemplateValues::type, u"a{status}"_s), u"A"_s + u"IN PROGRESS"_s},
            {u"{status}"_s, with(&TemplateValues::status, u"a{TYPE}{type}{STATUS}{status}{key}"_s),
             u"a{TYPE}{type}{STATUS}{status}ABC-1"_s},
            {u"{key}"_s, with(&TemplateValues::key, u"{status}{key}{summary}"_s),
             u"{status}{key}Crash"_s},
            {u"{summary}"_s, with(&TemplateValues::summary, u"{key}{summary}{commenttext}"_s),
             u"{key}{summary}"_s + comment},
            {u"{commenttext}"_s,
             with(&TemplateValues::commentText,
                  u"{type-emoji}{commenttext}{commenter-name}{comment-emoji}"_s),
             u"\uE000\u201C{type-emoji}{commenttext}\uE000Ann\uE001"_s + balloon +
                 u"\u201D\uE001"_s},
            {u"{commenter-name}"_s,
             with(&TemplateValues::commentAuthor, u"{commenttext}{comment-emoji}"_s),
             u"\uE000{commenttext}"_s + balloon + u"\uE001"_s},
        };
        for (const auto &[templateText, values, text] : cases)
            QCOMPARE(templateText + render(templateText, values, true), templateText + text);
    }

    void fillsConfluenceTemplates() {
        const QString all = u"{title}{space}{type}{id}"_s;
        struct Case {
            QString templateText, title, space, type, id, text;
        };
        const QList<Case> cases{
            {u"<b>{title}</b> \u00B7 {type} ({space})"_s, u"Runbook"_s, u"OPS"_s, u"Blog"_s,
             u"98"_s, u"\uE002Runbook\uE003 \u00B7 Blog (OPS)"_s},
            {u"{title} {space} {type} "_s, u"a  <i>b"_s, {}, u"Page"_s, {}, u"a \uE000b Page"_s},
            {u"{title}"_s, all, u"OPS"_s, u"Blog"_s, u"98"_s, u"{title}OPSBlog98"_s},
            {u"{space}"_s, u"T"_s, all, u"Blog"_s, u"98"_s, u"{title}{space}Blog98"_s},
            {u"{type}"_s, u"T"_s, u"OPS"_s, all, u"98"_s, u"{title}{space}{type}98"_s},
            {u"{id}"_s, u"T"_s, u"OPS"_s, u"Blog"_s, all, all},
            {u"{Title}{key}<c>"_s, u"T"_s, {}, {}, {}, u"{Title}{key}<c>"_s},
        };
        for (const auto &[templateText, title, space, type, id, text] : cases)
            QCOMPARE(templateText +
                         Enrichment::renderConfluenceTemplate(templateText, title, space, type, id),
                     templateText + text);
    }
};

QTEST_GUILESS_MAIN(TestEnrichmentTemplates)
#include "test_enrichment_templates.moc"
