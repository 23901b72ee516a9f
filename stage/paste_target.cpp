// A window to paste into, which tells on its output what happens to it and takes commands, one a
// line, on its input: clear, busy MILLISECONDS, password on|off, grab on|off, shot FILE, quit.

#include "stage/JsonLines.h"

#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QFocusEvent>
#include <QJsonArray>
#include <QLineEdit>
#include <QMimeData>
#include <QSocketNotifier>
#include <QStackedWidget>
#include <QTextEdit>
#include <QThread>
#include <QWindow>

#include <xcb/xcb.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Which keys paste.
struct Manners {
    bool ctrlV = true;
    bool ctrlShiftV = false;
};

// Each flavour is fetched once, as a program does that wants it.
struct Pasted {
    explicit Pasted(const QMimeData &data)
        : formats(data.formats()), text(data.text()), html(data.html()) {
        for (const QString &name : {u"text/rtf"_s, u"application/rtf"_s, u"text/richtext"_s}) {
            if (rtf.isEmpty() && data.hasFormat(name))
                rtf = data.data(name);
        }
    }

    void report(const QString &via) const {
        say(u"paste"_s, {{u"via"_s, via},
                         {u"formats"_s, QJsonArray::fromStringList(formats)},
                         {u"text"_s, text},
                         {u"html"_s, html},
                         {u"rtf"_s, QString::fromLatin1(rtf.toBase64())}});
    }

    QStringList formats;
    QString text, html;
    QByteArray rtf;
};

QString modifierNames(Qt::KeyboardModifiers modifiers) {
    QStringList names;
    for (const auto &[modifier, name] :
         {std::pair(Qt::ControlModifier, u"Ctrl"_s), std::pair(Qt::AltModifier, u"Alt"_s),
          std::pair(Qt::ShiftModifier, u"Shift"_s), std::pair(Qt::MetaModifier, u"Super"_s)}) {
        if (modifiers.testFlag(modifier))
            names.append(name);
    }
    return names.join(u'+');
}

// What both editors have in common; an Edit must tell how it pastes (pasteNow).
template <typename Edit>
class Reporting : public Edit {
public:
    explicit Reporting(Manners manners) : m_manners(manners) {}

protected:
    virtual void pasteNow() = 0;
    virtual QString content() const = 0;

    void keyPressEvent(QKeyEvent *event) override {
        reportKey(u"press"_s, *event);
        const bool ctrlShiftV =
            event->keyCombination() == (Qt::ControlModifier | Qt::ShiftModifier | Qt::Key_V);
        if (ctrlShiftV ? m_manners.ctrlShiftV
                       : m_manners.ctrlV && event->matches(QKeySequence::Paste)) {
            m_via =
                modifierNames(event->modifiers()) + u'+' + QKeySequence(event->key()).toString();
            pasteNow();
            m_via = u"other"_s;
            return;
        }
        if (!m_manners.ctrlV && event->matches(QKeySequence::Paste))
            return;
        const QString before = content();
        Edit::keyPressEvent(event);
        if (content() != before)
            say(u"typed"_s, {{u"text"_s, event->text()}});
    }

    void keyReleaseEvent(QKeyEvent *event) override {
        reportKey(u"release"_s, *event);
        Edit::keyReleaseEvent(event);
    }

    void focusInEvent(QFocusEvent *event) override {
        Edit::focusInEvent(event);
        say(u"focused"_s);
    }

    void focusOutEvent(QFocusEvent *event) override {
        Edit::focusOutEvent(event);
        say(u"unfocused"_s);
    }

    QString m_via = u"other"_s; // the keys that paste at the moment

private:
    void reportKey(const QString &what, const QKeyEvent &event) {
        say(u"key"_s, {{u"type"_s, what},
                       {u"code"_s, qint64(event.nativeScanCode())},
                       {u"key"_s, QKeySequence(event.key()).toString()},
                       {u"text"_s, event.text()},
                       {u"modifiers"_s, modifierNames(event.modifiers())},
                       {u"repeat"_s, event.isAutoRepeat()}});
    }

    Manners m_manners;
};

class RichEdit : public Reporting<QTextEdit> {
public:
    using Reporting::Reporting;

protected:
    void pasteNow() override { paste(); }
    QString content() const override { return toPlainText(); }

    void insertFromMimeData(const QMimeData *source) override {
        const Pasted pasted(*source);
        if (pasted.html.isEmpty())
            textCursor().insertText(pasted.text);
        else
            textCursor().insertHtml(pasted.html);
        pasted.report(m_via);
    }
};

class SecretEdit : public Reporting<QLineEdit> {
public:
    explicit SecretEdit(Manners manners) : Reporting(manners) {
        setEchoMode(QLineEdit::Password);
        setAccessibleName(u"Password"_s);
    }

protected:
    void pasteNow() override {
        const Pasted pasted(*QGuiApplication::clipboard()->mimeData());
        insert(pasted.text);
        pasted.report(m_via);
    }
    QString content() const override { return text(); }
};

class Target : public QStackedWidget {
public:
    explicit Target(Manners manners)
        : m_rich(new RichEdit(manners)), m_secret(new SecretEdit(manners)) {
        addWidget(m_rich);
        addWidget(m_secret);
        resize(480, 240);
    }

    void setWindowClass(const QString &name) {
        const auto *x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
        if (!x11) // Wayland's word for it
            return QGuiApplication::setDesktopFileName(name);
        QByteArray value = name.toLatin1() + '\0' + name.first(1).toUpper().toLatin1() +
                           name.sliced(1).toLatin1() + '\0';
        xcb_change_property(x11->connection(), XCB_PROP_MODE_REPLACE,
                            static_cast<xcb_window_t>(winId()), XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, static_cast<uint32_t>(value.size()), value.constData());
    }

    void obey(const QString &command, const QString &argument) {
        const bool on = argument == u"on";
        bool done = true;
        if (command == u"quit") {
            QCoreApplication::quit();
        } else if (command == u"clear") {
            m_rich->clear();
            m_secret->clear();
        } else if (command == u"busy") {
            say(u"busy"_s);
            QThread::msleep(argument.toULong());
        } else if (command == u"password") {
            setCurrentWidget(on ? static_cast<QWidget *>(m_secret) : m_rich);
            currentWidget()->setFocus();
        } else if (command == u"grab") {
            done = windowHandle()->setKeyboardGrabEnabled(on);
        } else if (command == u"shot") {
            done = grab().save(argument);
        } else {
            done = false;
        }
        say(u"done"_s, {{u"command"_s, command}, {u"ok"_s, done}});
    }

private:
    RichEdit *m_rich;
    SecretEdit *m_secret;
};

// Calls `obey` with each line as it comes; the end of the input ends the program.
void readCommands(Target &target, QByteArray &pending) {
    char buffer[4096];
    const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0)
        return QCoreApplication::quit();
    pending.append(buffer, count);
    for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        const QString line = QString::fromUtf8(pending.first(end));
        pending.remove(0, end + 1);
        target.obey(line.section(u' ', 0, 0), line.section(u' ', 1));
    }
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{u"wm-class"_s, u"window class; Ctrl+Shift+V pastes as well"_s, u"name"_s},
                       {u"terminal"_s, u"Ctrl+Shift+V pastes and Ctrl+V does not"_s},
                       {u"title"_s, u"window title"_s, u"title"_s, u"Paste target"_s}});
    parser.process(application);
    const bool terminal = parser.isSet(u"terminal"_s);
    Target target({.ctrlV = !terminal, .ctrlShiftV = terminal || parser.isSet(u"wm-class"_s)});
    target.setWindowTitle(parser.value(u"title"_s));
    if (parser.isSet(u"wm-class"_s))
        target.setWindowClass(parser.value(u"wm-class"_s));
    QByteArray pending;
    QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &target,
                     [&] { readCommands(target, pending); });
    target.show();
    return application.exec();
}
