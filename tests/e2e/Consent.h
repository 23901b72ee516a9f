#pragma once

#include "e2e/Scene.h"
#include "stage/ScreenReader.h"

/// What a user on GNOME does once in a session: has the desktop asked for the keys, in the
/// preferences, and answers it. False if it does not come to that.
inline bool answerTheDesktop(Scene &scene, bool allows) {
    const QString offer = "Allow pasting until you log out";
    const QString question = "Remote desktop";
    // The switch, and the button after the one that cancels.
    const QList<int> yes{KEY_TAB, KEY_SPACE, KEY_TAB, KEY_TAB, KEY_SPACE};
    const ScreenReader reader(scene.desktop.bus());
    const auto isGone = [&] {
        const QList<Node> shown = reader.shown();
        return std::none_of(shown.begin(), shown.end(), [&](const Node &node) {
            return node.name() == question || (allows && node.name() == offer);
        });
    };
    if (!scene.brindle->activate("preferences"))
        return false;
    // The dialog lets a key down that comes before it has drawn what the one before has changed. It
    // is asked for again then.
    for (const int between : {100, 300, 900}) {
        const Node ask = reader.find("push button", offer);
        if (ask.path.isEmpty() || !ask.act())
            return false;
        const Node dialog = reader.find("window", question);
        if (!waitFor([&] { return dialog.is(Node::active); }))
            qWarning("the desktop's question is not in front");
        for (const int key : allows ? yes : QList<int>{KEY_ESC}) {
            scene.keys.tap(keyCode(key));
            QTest::qWait(between);
        }
        if (waitFor(isGone, 5000))
            return true;
        qWarning("the desktop's question stays");
        scene.keys.tap(keyCode(KEY_ESC));
    }
    return false;
}
