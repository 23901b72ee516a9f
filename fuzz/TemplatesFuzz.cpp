#include "clipboard/Clipboard.h"
#include "enrichment/ReferenceDetection.h"
#include "fakes/FakePlatform.h"
#include "fuzz/Fuzz.h"
#include "fuzz/PlainRendering.h"
#include "model/MarkedText.h"
#include "model/Text.h"

using namespace Qt::StringLiterals;
using Enrichment::TemplateValues;
using Fuzz::require;

namespace {

constexpr qsizetype snippetWords = 7;

/// Texts reach the templates from JSON and the settings, without half surrogate pairs.
QString nextText(Fuzz::Fields &fields) {
    return Enrichment::withoutLoneSurrogates(fields.nextText());
}

void checkSnippet(const QString &comment) {
    const QString snippet = Enrichment::commentSnippet(comment);
    const QStringList words = Text::words(comment);
    require(snippet.isEmpty() == words.isEmpty(), "a snippet of words, and none without");
    if (words.isEmpty())
        return;
    const bool goesOn = words.size() > snippetWords;
    require(snippet == u'\u201C' + words.mid(0, snippetWords).join(u' ') +
                           (goesOn ? u"\u2026\u201D"_s : u"\u201D"_s),
            "seven words at most, in quotes, with an ellipsis if there are more");
    require(!snippet.contains(u'\n') && !snippet.contains(u"  "), "a snippet is one line");
}

/// The text that a browser would show for `html`, which holds one link in the four style tags.
QString shown(QString html) {
    require(html.count(u'<') == html.count(u'>'), "tags are closed");
    for (const QStringView tag : {u"<i>", u"</i>", u"<b>", u"</b>", u"</a>"})
        html.remove(tag.toString());
    const qsizetype end = html.indexOf(u'>');
    require(html.startsWith(u"<a href=\"") && html.count(u'"') == 2 && html.count(u'<') == 1,
            "one link, and nothing of the text is markup");
    require(!html.contains(u'\''), "no quote of the text stands bare");
    html = html.sliced(end + 1);
    html.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s);
    html.replace(u"&quot;"_s, u"\""_s).replace(u"&#39;"_s, u"'"_s);
    html.replace(u"&amp;"_s, u"&"_s);
    return html;
}

void checkFlavours(FakePlatform &platform, const QString &marked) {
    const QString plain = Enrichment::stripStyleMarkers(marked);
    const AttributedText attributed = Enrichment::attributedFromMarked(marked);
    QString ofRuns;
    for (const AttributedText::Run &run : attributed.runs()) {
        require(!run.text.isEmpty(), "no run is empty");
        ofRuns += run.text;
    }
    require(ofRuns == plain, "the runs hold the text");

    const QString url = u"https://h.example/?a=\"<'&"_s;
    bool isDone = false;
    const QString written =
        Clipboard::write(marked, url, PasteFormat::RichLink, std::nullopt,
                         [&](const auto &answer) { isDone = answer.has_value(); });
    require(isDone, "the link is on the clipboard");
    require(written == plain + u" ("_s + url + u')', "plain text, then the address");
    require(shown(platform.pasteboard->text(PasteboardType::Html).value_or(QString())) == plain,
            "the HTML shows the text");
}

void checkJira(FakePlatform &platform, Fuzz::Fields &fields, const QString &templateText) {
    TemplateValues values{.key = u"ABC-1"_s,
                          .type = nextText(fields),
                          .summary = nextText(fields),
                          .status = nextText(fields),
                          .commentText = nextText(fields),
                          .commentAuthor = nextText(fields)};
    values.isComment = !values.commentText->isEmpty();
    const QString emoji = nextText(fields);
    const QList<TypeEmojiMapping> table{{.type = *values.type, .emoji = emoji}};
    const QString text = Enrichment::renderTemplate(templateText, values, table, emoji);
    require(text == plainlyRendered(templateText, values, emoji, emoji),
            "the shortcuts render what the patterns render");
    require(!text.contains(u"  ") && text == Text::trimmedSpaces(text),
            "no two spaces together and none at the ends");
    checkSnippet(*values.commentText);
    checkFlavours(platform, text);
}

void checkConfluence(FakePlatform &platform, Fuzz::Fields &fields, const QString &templateText) {
    const QString title = nextText(fields);
    const QString text = Enrichment::renderConfluenceTemplate(templateText, title, nextText(fields),
                                                              u"Page"_s, u"12"_s);
    require(!text.contains(u"  ") && text == Text::trimmedSpaces(text),
            "no two spaces together and none at the ends");
    require(Enrichment::applyStyleTags(text) == text, "no style tag is left");
    checkFlavours(platform, text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static FakePlatform &platform = *new FakePlatform; // outlives every static
    Fuzz::Fields fields(data, size);
    const bool isConfluence = fields.next() == "page";
    const QString templateText = nextText(fields);
    if (isConfluence)
        checkConfluence(platform, fields, templateText);
    else
        checkJira(platform, fields, templateText);
    return 0;
}
