#include "fakes/FakePlatform.h"
#include "platform/linux/HotkeyRelease.h"
#include "platform/portal/PortalBackends.h"
#include "platform/portal/RemoteDesktopKeys.h"
#include "platform/qt/QtDispatch.h"
#include "stage/Actors.h"

#include <QTest>

namespace {

/// What is done, and what must come of it: an outcome, and what the portal saw.
struct Step {
    QString what;
    QString seen;
};

constexpr quint32 ctrlAltSuper =
    HotkeyFormat::controlKey | HotkeyFormat::optionKey | HotkeyFormat::cmdKey;

QString words(const PasteAccess &access) {
    const char *states[] = {"ready", "needs consent", "impossible"};
    QString text = states[static_cast<int>(access.state)];
    for (const QString &more : {access.reason, access.offer})
        text += more.isEmpty() ? QString() : " | " + more;
    return text;
}

/// A portal and a program that uses it.
class Scene {
public:
    explicit Scene(const VirtualDesktop &desktop) : m_desktop(desktop) {
        Platform platform;
        platform.dispatch = m_dispatch; // of the keyring
        Platform::install(platform);
    }
    ~Scene() {
        m_keys.reset();
        m_hotkeys.reset();
        m_backends.reset();
        Platform::install({});
    }

    /// The outcome of a step; what the portal sees of it may come a moment later.
    QString perform(const QString &step) {
        const QString verb = step.section(' ', 0, 0);
        const QString rest = step.section(' ', 1);
        if (m_portal)
            m_portal->forgetEvents();
        if (verb == "portal")
            m_portal = std::make_unique<DesktopPortal>(m_desktop, rest.split(' '));
        else if (verb == "kill")
            m_portal.reset();
        else if (verb == "tell")
            m_portal->send(rest);
        else if (verb == "keyring")
            return m_secrets->secrets.value("org.ostrowind.brindle/remote-desktop-restore-token");
        else
            return verb == "hotkeys" ? performOnHotkeys(rest) : performOnKeys(verb, rest);
        return {};
    }

    /// With what is true by now.
    QString state() const {
        QStringList all;
        if (m_keys)
            all.append(words(m_keys->access()));
        if (m_hotkeys)
            all.append(hotkeyState());
        if (m_portal)
            all.append(m_portal->done());
        return all.join("; ");
    }

private:
    QString performOnKeys(const QString &verb, const QString &rest) {
        std::optional<QString> outcome;
        if (verb == "start") {
            m_keys.reset();
            auto portal = std::make_shared<PortalConnection>();
            m_keys = std::make_unique<RemoteDesktopKeys>(RemoteDesktopKeys::Tools{
                portal, m_secrets, m_dispatch,
                std::make_shared<HotkeyRelease>(std::make_shared<HotkeyHold>(), m_dispatch),
                [vIsInItsPlace = rest.isEmpty()] { return vIsInItsPlace; }});
            bool isKnown = false;
            m_keys->onAccessChange([&] { isKnown = true; });
            waitFor([&] { return isKnown; });
            m_keys->onAccessChange({});
            return {};
        }
        if (verb == "ask") {
            m_keys->requestAccess([&](const PasteAccess &) { outcome = "answered"; });
        } else if (verb == "prepare") {
            m_keys->prepare();
            return {};
        } else if (verb == "press") {
            m_keys->press({9, rest == "shift"},
                          [&](bool pressed) { outcome = pressed ? "pressed" : "not pressed"; });
        }
        waitFor([&] { return outcome.has_value(); });
        return outcome.value_or("nothing came of it");
    }

    QString performOnHotkeys(const QString &step) {
        if (step == "ask")
            m_hotkeys->desktopsChoice()->openSettings();
        else if (step == "given up")
            m_hotkeys->unbind();
        else
            bindHotkeys(step);
        return {};
    }

    void bindHotkeys(const QString &step) {
        m_hotkeys.reset();
        m_backends = std::make_unique<PortalBackends>(m_dispatch, m_secrets);
        m_backends->probe()->isWanted = step.contains("probe");
        m_backends->probe()->fired = [this] { ++m_probed; };
        const auto otherwise = [this](const QString &reason) {
            m_otherwise = reason;
            return std::make_shared<FakeHotkeys>();
        };
        m_hotkeys = *m_backends->globalShortcuts(
            m_defaults, Hotkeys::DesktopsChoice{"put this there:", {}, "brindle paste"}, otherwise);
        QList<KeyCombo> combos{{9, ctrlAltSuper}};
        if (step.contains("two"))
            combos.append({1, HotkeyFormat::controlKey | HotkeyFormat::shiftKey});
        m_outcome = "no outcome";
        m_hotkeys->bind(
            combos, [this] { ++m_pressed; }, [this] { ++m_released; },
            [this](const QList<Hotkeys::Refusal> &refusals) {
                m_outcome = refusals.isEmpty() ? "bound" : refusals[0].reason;
            });
    }

    QString hotkeyState() const {
        QString text = m_outcome;
        if (const auto choice = m_hotkeys->desktopsChoice())
            text += " | " + choice->text + choice->line + choice->action;
        if (!m_otherwise.isEmpty())
            text = "otherwise: " + m_otherwise;
        for (const auto &[name, count] :
             {std::pair{"pressed", m_pressed}, {"released", m_released}, {"probed", m_probed}})
            text += count ? " | " + QString(name) + ' ' + QString::number(count) : QString();
        return text;
    }

    const VirtualDesktop &m_desktop;
    std::shared_ptr<Dispatch> m_dispatch = std::make_shared<QtDispatch>();
    std::shared_ptr<MemorySecretStore> m_secrets = std::make_shared<MemorySecretStore>();
    std::shared_ptr<MemoryDefaults> m_defaults = std::make_shared<MemoryDefaults>();
    std::unique_ptr<DesktopPortal> m_portal;
    std::unique_ptr<RemoteDesktopKeys> m_keys;
    std::unique_ptr<PortalBackends> m_backends;
    std::shared_ptr<Hotkeys> m_hotkeys;
    QString m_outcome, m_otherwise;
    int m_pressed = 0;
    int m_released = 0;
    int m_probed = 0;
};

const QString registers = "register org.ostrowind.brindle";
const QString waits = "needs consent | not authorized by the desktop yet | Ask for Permission";
const QString select2 = "select types 1 persist 2 token \"%1\"";
const QString select1 = "select types 1 persist no token \"\"";
const QString ctrlV = "key 29 down; key 47 down; key 47 up; key 29 up";
const QString bind = "bind paste=CTRL+ALT+LOGO+v";
const QString given = "bound | Ctrl+Alt+Super+V";

QString all(const QStringList &parts) {
    return parts.join("; ");
}

} // namespace
Q_DECLARE_METATYPE(QList<Step>)

/// Against a portal that does as it is told.
class TestPortal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_desktop.problem().isEmpty(), qPrintable(m_desktop.problem()));
        m_desktop.join();
        QCOMPARE(PortalBackends(nullptr, nullptr).remoteDesktop(nullptr, {}).error(),
                 "the desktop has no portal: org.freedesktop.portal.Desktop is not on the bus");
    }

    void keys_data() {
        QTest::addColumn<QList<Step>>("steps");
        const auto row = [](const char *name, const QList<Step> &steps) {
            QTest::newRow(name) << steps;
        };
        const QString refused =
            "impossible | you have not allowed it to press keys | Ask for Permission";
        const QString untilLogout = "impossible | the desktop asks for it after each login | "
                                    "Allow pasting until you log out";
        const QString distrusted =
            "impossible | it is not authorized to press keys any more | Ask for Permission";
        const auto takenBack = [](const QString &offer) {
            return "impossible | the permission to press keys was taken back | " + offer;
        };
        const QString asked = all({select2.arg(""), "user asked", "session closed"});
        row("consent once, then a session for each paste",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"press", all({"not pressed", waits})},
             {"ask", all({"answered", "ready", asked})},
             {"keyring", "token-1; ready"},
             {"press", all({"pressed", "ready", select2.arg("token-1"), ctrlV, "session closed"})},
             {"keyring", "token-2; ready"},
             {"start", all({"ready", registers})},
             {"press shift", all({"pressed", "ready", select2.arg("token-2"),
                                  "key 29 down; key 42 down; key 47 down; key 47 up; key 42 up; "
                                  "key 29 up",
                                  "session closed"})}});
        row("another place for V",
            {{"portal --keys 2", ""},
             {"start elsewhere", all({waits, registers})},
             {"ask", all({"answered", "ready", asked})},
             {"press",
              all({"pressed", "ready", select2.arg("token-1"),
                   "key 29 down; keysym 118 down; keysym 118 up; key 29 up", "session closed"})}});
        for (const QString no : {"deny", "switch off"})
            row(qPrintable("the user says no: " + no),
                {{"portal --keys 2", ""},
                 {"start", all({waits, registers})},
                 {"tell answer " + no, waits},
                 {"ask", all({"answered", refused, asked})},
                 {"press", all({"not pressed", refused})},
                 {"tell answer allow", refused},
                 {"ask", all({"answered", "ready", asked})}});
        row("a token that is good no longer asks nobody",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"ask", all({"answered", "ready", asked})},
             {"tell distrust", "ready"},
             {"tell answer nothing", "ready"},
             {"press", all({"not pressed", distrusted, select2.arg("token-1"), "user asked",
                            "question withdrawn", "session closed"})},
             {"press", all({"not pressed", distrusted})},
             {"keyring", "token-1; " + distrusted},
             {"tell answer allow", distrusted},
             {"ask",
              all({"answered", "ready", select2.arg("token-1"), "user asked", "session closed"})}});
        row("a session that is not used",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"ask", all({"answered", "ready", asked})},
             {"prepare", all({"ready", select2.arg("token-1"), "session closed"})}});
        row("taken back while a session is open",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"ask", all({"answered", "ready", asked})},
             {"prepare", all({"ready", select2.arg("token-1")})},
             {"tell revoke", takenBack("Ask for Permission")},
             {"press", all({"not pressed", takenBack("Ask for Permission")})}});
        row("nothing to keep but the session",
            {{"portal --keys 1 --no-registry", ""},
             {"start", all({untilLogout, registers})},
             {"press", all({"not pressed", untilLogout})},
             {"ask", all({"answered", "ready", select1, "user asked"})},
             {"press", all({"pressed", "ready", ctrlV})},
             {"press", all({"pressed", "ready", ctrlV})},
             {"tell revoke", takenBack("Allow pasting until you log out")},
             {"ask", all({"answered", "ready", select1, "user asked"})},
             {"start", all({untilLogout, "session closed", registers})}});
        row("allowed for once",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"tell answer allow once", waits},
             {"ask", all({"answered", "ready", select2.arg(""), "user asked"})},
             {"press", all({"pressed", "ready", ctrlV})},
             {"kill", "impossible | the permission to press keys has ended with the desktop's "
                      "portal | Ask for Permission"}});
        row("the portal ends and comes back",
            {{"portal --keys 2", ""},
             {"start", all({waits, registers})},
             {"ask", all({"answered", "ready", asked})},
             {"kill", "ready"},
             {"press", "not pressed; ready"},
             {"portal --keys 2 --token token-1", "ready"},
             {"press", all({"pressed", "ready", registers, select2.arg("token-1"), ctrlV,
                            "session closed"})}});
        row("no such interface", {{"portal --shortcuts 1", ""},
                                  {"start", all({"impossible | the desktop's portal has no "
                                                 "RemoteDesktop",
                                                 registers})}});
        row("no keyboard",
            {{"portal --keys 2 --no-keyboard", ""},
             {"start", all({"impossible | the desktop's portal offers no keyboard", registers})}});
        row("a portal that never answers",
            {{"portal --keys 2 --silent", ""},
             {"start", "impossible | the desktop's portal does not answer "
                       "(org.freedesktop.DBus.Error.NoReply)"},
             {"kill", "impossible | the desktop's portal does not answer "
                      "(org.freedesktop.DBus.Error.NoReply)"},
             {"portal --keys 2", all({waits, registers})}});
    }
    void keys() { play(); }

    void hotkeys_data() {
        QTest::addColumn<QList<Step>>("steps");
        const auto row = [](const char *name, const QList<Step> &steps) {
            QTest::newRow(name) << steps;
        };
        const QString dismissed = "can't be had: the desktop was not allowed to give one | The "
                                  "desktop gives Brindle no hotkey, as you have dismissed its "
                                  "question.Ask for a Hotkey";
        row("pressed once however long it is held",
            {{"portal --shortcuts 1 --bind-code 2", ""},
             {"hotkeys start", all({given, registers, bind, "user asked"})},
             {"tell activate paste", given + " | pressed 1"},
             {"tell activate paste", given + " | pressed 1"},
             {"tell deactivate paste", given + " | pressed 1 | released 1"},
             {"tell activate paste", given + " | pressed 2 | released 1"},
             {"hotkeys given up", given + " | pressed 2 | released 1; session closed"}});
        row("two, and a probe",
            {{"portal --shortcuts 1", ""},
             {"hotkeys two and probe",
              all({given, registers, bind + " paste-2=CTRL+SHIFT+s keys-up=XF86Launch9",
                   "user asked"})},
             {"tell activate paste-2", given + " | pressed 1"},
             {"tell activate keys-up", given + " | pressed 1 | probed 1"}});
        row("the desktop chooses another",
            {{"portal --shortcuts 1", ""},
             {"hotkeys start", all({given, registers, bind, "user asked"})},
             {"tell trigger Alt+F9", "bound | Alt+F9"},
             {"tell trigger Press <Shift><Super><Control>F9", "bound | Ctrl+Shift+Super+F9"},
             {"tell trigger <Alt>x", "bound | Alt+X"},
             {"tell trigger ", "bound | put this there:brindle paste"}});
        row("dismissed is not asked again by itself",
            {{"portal --shortcuts 1", ""},
             {"tell answer deny", ""},
             {"hotkeys start", all({dismissed, registers, bind, "user asked", "session closed"})},
             {"hotkeys start", all({dismissed, registers})},
             {"tell answer allow", dismissed},
             {"hotkeys ask", all({given, bind, "user asked"})},
             {"hotkeys start", all({given, "session closed", registers, bind})}});
        row("a dialog that can't be shown is not one that was dismissed",
            {{"portal --shortcuts 1", ""},
             {"tell answer can't ask", ""},
             {"hotkeys start",
              all({"can't be had: the desktop gives none", registers, bind, "session closed"})}});
        row("a dialog that can't be shown yet",
            {{"portal --shortcuts 1", ""},
             {"tell answer can't ask yet", ""},
             {"hotkeys start",
              all({given, registers, bind, "session closed", bind, "user asked"})}});
        row("the portal ends and comes back",
            {{"portal --shortcuts 1", ""},
             {"hotkeys start", all({given, registers, bind, "user asked"})},
             {"kill", given},
             {"portal --shortcuts 1", all({given, registers, bind, "user asked"})},
             {"tell activate paste", given + " | pressed 1"}});
        row("no such interface",
            {{"portal --keys 2", ""},
             {"hotkeys start",
              all({"otherwise: the desktop's portal has no GlobalShortcuts", registers})}});
        row("a portal that never answers",
            {{"portal --shortcuts 1 --silent", ""},
             {"hotkeys start", "otherwise: the desktop's portal does not answer "
                               "(org.freedesktop.DBus.Error.NoReply)"}});
    }
    void hotkeys() { play(); }

private:
    void play() {
        QFETCH(QList<Step>, steps);
        Scene scene(m_desktop);
        int number = 0;
        for (const Step &step : steps) {
            const QString outcome = scene.perform(step.what);
            const auto seen = [&] {
                return all(QStringList{outcome, scene.state()}.filter(QRegularExpression(".")));
            };
            waitFor([&] { return seen() == step.seen; });
            ++number;
            const QString place = QString("step %1, %2: ").arg(number).arg(step.what);
            QCOMPARE(place + seen(), place + step.seen);
        }
    }

    VirtualDesktop m_desktop{{.windowManager = false}};
};

QTEST_GUILESS_MAIN(TestPortal)
#include "test_platform_portal.moc"
