#include "Demo.h"

#include "SampleSite.h"
#include "stage/ClipboardReader.h"
#include "stage/Windows.h"

#include <linux/input-event-codes.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QString editorTitle = u"Editor"_s;

QList<DemoStep> steps() {
    const QString issue = SampleSite::address() + u"/browse/ACME-7"_s;
    const QString comment = SampleSite::address() + u"/browse/ACME-12?focusedCommentId=10021"_s;
    const QString page = SampleSite::address() + u"/wiki/spaces/ENG/pages/4711/Release+plan"_s;
    const QString record = u"507f1f77bcf86cd799439011"_s;
    return {
        {.name = u"A Jira issue"_s,
         .copied = issue,
         .link = issue,
         .title = u"ACME-7 🐛 Crash on login"_s,
         .styledTitle = u"<b>ACME-7</b> 🐛 Crash on login"_s},
        {.name = u"A comment on an issue"_s,
         .copied = comment,
         .link = comment,
         .title = u"ACME-12 📖 Größere Symbole — heute & später 🎈 💬 "
                  "Ann: “Looks good on the small screen, let…”"_s,
         .styledTitle = u"<b>ACME-12</b> 📖 Größere Symbole — heute &amp; später 🎈 💬 "
                        "<i>Ann</i>: <i>“Looks good on the small screen, let…”</i>"_s},
        {.name = u"A Confluence page, copied as a link"_s,
         .copied = u"the plan"_s,
         .copiedHtml = u"<a href=\"%1\">the plan</a>"_s.arg(page),
         .link = page,
         .title = u"Release plan — ENG"_s,
         .styledTitle = u"Release plan — ENG"_s},
        {.name = u"A record id"_s,
         .copied = record,
         .link = u"https://app.acme.example/records/"_s + record,
         .title = record,
         .styledTitle = record},
    };
}

QMap<QString, QString> settings() {
    return {{u"jiraBaseURL"_s, SampleSite::address()},
            {u"jiraEmail"_s, u"you@acme.example"_s},
            {u"displayTemplate"_s, u"<b>{key}</b> {type-emoji} {summary}"
                                   "<c> {comment-emoji} {commenter-name}: {commenttext}</c>"_s},
            {u"accountBaseURL"_s, u"https://app.acme.example/records/"_s},
            {u"accountPasteFormat"_s, u"richLink"_s}};
}

void print(const QString &label, const QString &text) {
    std::printf("  %-12s %s\n", qPrintable(label), qUtf8Printable(text));
    std::fflush(stdout);
}

bool judge(bool isRight, const QString &what) {
    if (!isRight)
        print(u"WRONG"_s, what);
    return isRight;
}

} // namespace

Demo::Demo(const QString &pictures) : m_pictures(pictures), m_desk(DesktopOptions{}) {
    m_desk.start(settings(), QStringLiteral(DEMO_APPLICATION_PROGRAM));
}

bool Demo::play() {
    if (!isUp())
        return false;
    bool isRight = true;
    for (const DemoStep &step : steps())
        isRight = playStep(step) && isRight;
    std::puts("Pictures");
    isRight = takePicture(editorTitle, u"editor.png"_s) && isRight;
    isRight = showWindow(u"preferences"_s, u"Settings"_s, u"preferences.png"_s) && isRight;
    isRight = showWindow(u"logs"_s, u"Brindle Logs"_s, u"log.png"_s) && isRight;
    printLog();
    return isRight;
}

bool Demo::isUp() {
    if (!m_desk.desktop.problem().isEmpty())
        return judge(false, u"the private desktop does not start: "_s + m_desk.desktop.problem());
    return judge(m_desk.isUp(), u"Brindle does not start"_s) &&
           judge(m_desk.openTarget({u"--title"_s, editorTitle}), u"the editor does not start"_s);
}

bool Demo::playStep(const DemoStep &step) {
    std::printf("%s\n", qUtf8Printable(step.name));
    QList<OwnedFlavour> flavours{{u"UTF8_STRING"_s, step.copied.toUtf8()}};
    if (!step.copiedHtml.isEmpty())
        flavours.prepend({u"text/html"_s, step.copiedHtml.toUtf8()});
    const ClipboardOwner copies(m_desk.desktop, flavours);
    print(u"copied"_s, step.copiedHtml.isEmpty() ? step.copied : step.copiedHtml);

    m_desk.target->forgetEvents();
    m_desk.press();
    const auto paste = m_desk.target->waitForPaste();
    if (!judge(paste.has_value(), u"nothing was pasted"_s))
        return false;
    print(u"pasted"_s, paste->text);
    print(u"as a link"_s, paste->html);

    const bool isRestored = clipboardBecomes(step);
    m_desk.keys.tap(keyCode(KEY_ENTER));
    const QString text = u"%1 (%2)"_s.arg(step.title, step.link);
    const QString html = u"<a href=\"%1\">%2</a>"_s.arg(step.link, step.styledTitle);
    return judge(paste->text == text && paste->html == html, u"should be "_s + html) &&
           judge(isRestored, u"the clipboard should hold again what was copied"_s) &&
           judge(m_desk.target->pasteCount() == 1, u"pasted more than once"_s);
}

bool Demo::clipboardBecomes(const DemoStep &step) {
    QString text, html;
    const bool isRestored = waitFor([&] {
        ClipboardReader clipboard(m_desk.desktop.display());
        text = QString::fromUtf8(clipboard.data(u"UTF8_STRING"_s).value_or(QByteArray()));
        html = QString::fromUtf8(clipboard.data(u"text/html"_s).value_or(QByteArray()));
        return text == step.copied && html == step.copiedHtml;
    });
    print(u"clipboard"_s, html.isEmpty() ? text : html);
    return isRestored;
}

bool Demo::showWindow(const QString &action, const QString &title, const QString &file) {
    const QImage before = screenPicture(m_desk.desktop.display());
    return judge(m_desk.brindle->activate(action) && m_desk.shows(title),
                 u"there is no window “%1”"_s.arg(title)) &&
           takePicture(title, file, before);
}

// A window is drawn some time after it appears: the picture is good once it is no longer what was
// there before and stays the same.
bool Demo::takePicture(const QString &title, const QString &file, const QImage &before) {
    QImage picture;
    const bool isDrawn = waitFor([&] {
        const QRect place = windowPlace(m_desk.desktop.display(), title);
        const QImage last =
            std::exchange(picture, screenPicture(m_desk.desktop.display()).copy(place));
        return !picture.isNull() && picture == last && picture != before.copy(place);
    });
    const QString path = m_pictures + u'/' + file;
    if (!judge(isDrawn && picture.save(path), u"no picture of “%1”"_s.arg(title)))
        return false;
    print(title, path);
    return true;
}

void Demo::printLog() {
    std::puts("Activity log");
    for (const QJsonObject &event : m_desk.brindle->events(u"log"_s))
        std::printf("  %s\n", qUtf8Printable(event[u"line"].toString()));
}
