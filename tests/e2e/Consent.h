#pragma once

#include "e2e/Scene.h"
#include "stage/GnomePortal.h"
#include "stage/ScreenReader.h"

/// What a user on GNOME does to be able to paste: has the desktop asked, in the preferences, and
/// answers. Each waits for what it looks for and is false if that does not come.
class Consent {
public:
    explicit Consent(Scene &scene) : m_scene(scene), m_reader(scene.desktop.bus()) {}

    /// Agrees to what the desktop shows at the first start: the hotkeys that Brindle would have.
    bool acceptHotkeys() const {
        const Node add = m_reader.find("button", "Add");
        return add.act() && waitFor([this] { return !shows("Add Keyboard Shortcuts"); });
    }

    /// Has the desktop asked for the keys.
    bool answer(bool allows) {
        if (!m_scene.brindle->activate("preferences"))
            return false;
        if (gnomeGivesHotkeys())
            return m_reader.find("push button", "Ask for Permission").act() && answerNow(allows);
        // The dialog lets a key down that comes before it has drawn what the one before has
        // changed. It is asked for again then.
        for (const int between : {100, 300, 900}) {
            if (m_reader.find("push button", offerForOnce).act() && answerByKeys(allows, between))
                return true;
            qWarning("the desktop's question stays");
            m_scene.keys.tap(keyCode(KEY_ESC));
        }
        return false;
    }

    /// The same from the alert that a press brings up.
    bool answerAlert(bool allows) const {
        return m_reader.find("push button", "Open Accessibility Settings").act() &&
               answerNow(allows);
    }

    /// Both of the first, and all that comes of it; only once where the desktop remembers it.
    bool allowAll() {
        if (!gnomeGivesHotkeys())
            return answer(true);
        if (m_scene.isAllowedAll)
            return isReady();
        m_scene.isAllowedAll = acceptHotkeys() && answer(true);
        return m_scene.isAllowedAll && isReady();
    }

private:
    bool answerNow(bool allows) const {
        if (allows && !m_reader.find("switch", "Allow Remote Interaction").act())
            return false;
        const Node button = m_reader.find("button", allows ? "Share" : "Cancel");
        return waitFor([&] { return button.is(Node::sensitive); }) && button.act() &&
               waitFor([this] { return !shows("Remote Desktop"); });
    }

    bool shows(const QString &title) const {
        const QList<Node> shown = m_reader.shown();
        return std::any_of(shown.begin(), shown.end(),
                           [&](const Node &node) { return node.name() == title; });
    }

    /// The switch, and the button after the one that cancels.
    bool answerByKeys(bool allows, int between) const {
        const QList<int> yes{KEY_TAB, KEY_SPACE, KEY_TAB, KEY_TAB, KEY_SPACE};
        const QString question = "Remote desktop";
        const Node dialog = m_reader.find("window", question);
        if (!waitFor([&] { return dialog.is(Node::active); }))
            qWarning("the desktop's question is not in front");
        for (const int key : allows ? yes : QList<int>{KEY_ESC}) {
            m_scene.keys.tap(keyCode(key));
            QTest::qWait(between);
        }
        return waitFor([&] { return !shows(question) && !(allows && shows(offerForOnce)); }, 5000);
    }

    /// What the desktop gives at a start of the program comes in a moment.
    bool isReady() const {
        return waitFor([this] {
            QProcess doctor;
            doctor.setProcessEnvironment(m_scene.desktop.environment());
            doctor.start(BRINDLE_PROGRAM, {"doctor"});
            waitFor([&] { return doctor.state() == QProcess::NotRunning; });
            const QString said = QString::fromUtf8(doctor.readAll());
            return said.contains("the desktop has it: Ctrl+Alt+Super+V") &&
                   said.contains("ok       paste keys");
        });
    }

    const QString offerForOnce = "Allow pasting until you log out";
    Scene &m_scene;
    ScreenReader m_reader;
};
