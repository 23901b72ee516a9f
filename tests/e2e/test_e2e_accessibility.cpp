#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/ClipboardReader.h"
#include "stage/ScreenReader.h"

#include <QSettings>
#include <QTest>

namespace {

/// Brindle with a window open, and a reader of the screen.
struct Scene {
    explicit Scene(const QString &action) : desktop({.keyring = true, .accessibility = true}) {
        brindle = std::make_unique<BrindleProcess>(
            desktop, QMap<QString, QString>{{"jiraEmail", "ann@h.example"},
                                            {"accountBaseURL", "https://r.example/"}});
        isUp = reader.isConnected() && brindle->isUp() && brindle->activate(action);
    }
    QList<Node> shown() const { return reader.shown(); }
    Node find(const QString &role, const QString &name) const { return reader.find(role, name); }
    QVariant setting(const QString &key) const {
        const QString folder = desktop.environment().value("XDG_CONFIG_HOME");
        return QSettings(folder + "/org.ostrowind.brindle.conf", QSettings::IniFormat).value(key);
    }

    VirtualDesktop desktop;
    ScreenReader reader{desktop.bus()};
    std::unique_ptr<BrindleProcess> brindle;
    bool isUp = false;
};

} // namespace

class TestE2eAccessibility : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyControlTellsWhatItIs() {
        const Scene scene("preferences");
        QVERIFY2(scene.isUp, qPrintable(scene.desktop.problem()));
        const QStringList roles{"push button", "check box", "radio button",  "page tab", "text",
                                "label",       "slider",    "password text", "menu item"};
        const QList<std::pair<QString, QString>> tabs{{"General", "Launch at login"},
                                                      {"Jira", "Resize the field"},
                                                      {"Confluence", "{title}"},
                                                      {"ID Links", "Pastes as"},
                                                      {"Connection", "Confluence API Token"}};
        for (const auto &[tab, content] : tabs) {
            QVERIFY(scene.find("page tab", tab).act());
            QStringList names;
            const auto read = [&] {
                names.clear();
                for (const Node &node : scene.shown()) {
                    if (node.is(Node::focusable) ||
                        node.property("Action", "NActions").toInt() > 0) {
                        names.append(node.name());
                        if (node.name().isEmpty() || !roles.contains(node.role()))
                            names.append("! " + node.role() + " " + node.name());
                    }
                }
                return names.contains(content);
            };
            QVERIFY2(waitFor(read), qPrintable(tab + ": " + names.join(", ")));
            QVERIFY2(names.filter("! ").isEmpty(), qPrintable(names.filter("! ").join(", ")));
            QCOMPARE(names.first(), "General"); // the sidebar is read first
            QVERIFY(scene.find("page tab", tab).is(Node::selected));
        }
    }

    void controlsWorkFromOutside() {
        const Scene scene("preferences");
        QVERIFY2(scene.isUp, qPrintable(scene.desktop.problem()));
        const Node restore = scene.find("check box", "Restore original clipboard after paste");
        QVERIFY(restore.is(Node::checked) && restore.act());
        QVERIFY(waitFor([&] { return !restore.is(Node::checked); }));
        QVERIFY(waitFor(
            [&] { return scene.setting("restoreClipboardAfterPaste") == QVariant("false"); }));
        QVERIFY(scene.find("radio button", "Markdown").act());
        QVERIFY(waitFor([&] { return scene.setting("pasteFormat") == "markdown"; }));
        QVERIFY(scene.find("text", "Example").text().startsWith("[AB-12"));
        QVERIFY(scene.find("push button", "Alternate: Not set").act());
        QVERIFY(!scene.find("push button", "Alternate: Press keys…").path.isEmpty());

        QVERIFY(scene.find("page tab", "Jira").act());
        const Node field = scene.find("text", "Display format");
        QVERIFY(field.is(Node::editable));
        QVERIFY(field.call("org.a11y.atspi.EditableText", "SetTextContents", {"x "}).toBool());
        QVERIFY(scene.find("push button", "{key}").act());
        QVERIFY(waitFor([&] { return scene.setting("displayTemplate") == "x {key}"; }));
        QCOMPARE(field.text(), "x {key}");
        QVERIFY(!scene.find("push button", "Fetch").is(Node::enabled));
        const Node grip = scene.find("slider", "Resize the field");
        QCOMPARE(grip.property("Value", "CurrentValue").toInt(), 22);
        grip.call(
            "org.freedesktop.DBus.Properties", "Set",
            {"org.a11y.atspi.Value", "CurrentValue", QVariant::fromValue(QDBusVariant(60.0))});
        QVERIFY(waitFor([&] { return grip.property("Value", "CurrentValue").toInt() == 60; }));
    }

    void ownFieldPastesWhatBrindleOwns() {
        const Scene scene("preferences");
        QVERIFY2(scene.isUp, qPrintable(scene.desktop.problem()));
        const QString link = "https://r.example/507f1f77bcf86cd799439011";
        const ClipboardOwner other(scene.desktop, {{"UTF8_STRING", "507f1f77bcf86cd799439011"}});
        QVERIFY(scene.brindle->activate("enrich-only"));
        ClipboardReader clipboard(scene.desktop.display());
        QVERIFY(waitFor(
            [&] { return clipboard.data("UTF8_STRING").value_or("").contains(link.toUtf8()); }));
        QVERIFY(scene.find("page tab", "Jira").act());
        const Node field = scene.find("text", "Display format");
        QVERIFY(field.call("org.a11y.atspi.EditableText", "SetTextContents", {"x "}).toBool());
        // The toolkit lets the main thread wait five seconds for whoever owns the clipboard.
        QElapsedTimer timer;
        timer.start();
        field.call("org.a11y.atspi.EditableText", "PasteText", {2});
        QVERIFY(waitFor([&] { return field.text().contains(link); }));
        QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    }

    void theLogCanBeReadAndCleared() {
        const Scene scene("logs");
        QVERIFY2(scene.isUp, qPrintable(scene.desktop.problem()));
        QVERIFY(scene.find("text", "Activity Log").text().contains("app: launched"));
        const Node clear = scene.find("push button", "Clear");
        QVERIFY(clear.act());
        QVERIFY(waitFor([&] { return !clear.is(Node::enabled); }));
        QVERIFY(!scene.find("label", "0 entries (last 200 kept)").path.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestE2eAccessibility)
#include "test_e2e_accessibility.moc"
