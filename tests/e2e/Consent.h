#pragma once

#include "e2e/Scene.h"
#include "support/ScreenReader.h"

/// What a user on GNOME does once in a session: has the desktop asked for the keys, in the
/// preferences, and answers it. False if it does not come to that.
inline bool answerTheDesktop(Scene &scene, bool allows) {
    const QString offer = "Allow pasting until you log out";
    const ScreenReader reader(scene.desktop.bus());
    const Node ask =
        scene.brindle->activate("preferences") ? reader.find("push button", offer) : Node();
    if (ask.path.isEmpty() || !ask.act())
        return false;
    const Node dialog = reader.find("window", "Remote desktop");
    if (!waitFor([&] { return dialog.is(Node::active); }))
        return false;
    // The switch, and the button after the one that cancels.
    const QList<int> yes{KEY_TAB, KEY_SPACE, KEY_TAB, KEY_TAB, KEY_SPACE};
    for (const int key : allows ? yes : QList<int>{KEY_ESC})
        scene.keys.tap(keyCode(key));
    return waitFor([&] {
        const QList<Node> shown = reader.shown();
        return std::none_of(shown.begin(), shown.end(), [&](const Node &node) {
            return node.name() == "Remote desktop" || (allows && node.name() == offer);
        });
    });
}
