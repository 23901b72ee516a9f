#pragma once

#include "fakes/FakePlatform.h"
#include "preferences/PreferencesView.h"
#include "preferences/emoji/EmojiPicker.h"
#include "preferences/kit/WrappingText.h"
#include "storage/Settings.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QTest>

#include <memory>

/// What assistive programs call it.
inline QString nameOf(QWidget *widget) {
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(widget);
    return face ? face->text(QAccessible::Name) : QString();
}

/// The preferences on the screen.
struct PreferencesScene : FakePlatform {
    explicit PreferencesScene(const QString &tab = {}) {
        view = std::make_unique<PreferencesView>();
        view->show();
        QVERIFY(QTest::qWaitForWindowActive(view.get()));
        if (!tab.isEmpty())
            click(find<QAbstractButton>(tab));
    }

    /// The widgets of that kind on the screen that are called `name` by assistive programs.
    template <class W>
    QList<W *> all(const QString &name) const {
        QList<W *> found;
        for (W *widget : view->findChildren<W *>()) {
            if (widget->isVisible() && nameOf(widget) == name)
                found.append(widget);
        }
        QCoreApplication::processEvents(); // lay out what is new
        return found;
    }
    template <class W>
    W *find(const QString &name) const {
        return all<W>(name).value(0);
    }
    void click(QWidget *widget) {
        QVERIFY(widget);
        QTest::mouseClick(widget, Qt::LeftButton);
    }
    qsizetype count(const QString &text) const {
        qsizetype found = 0;
        for (const QLabel *label : view->findChildren<QLabel *>())
            found += label->isVisible() && label->text() == text;
        for (const WrappingText *one : view->findChildren<WrappingText *>())
            found += one->isVisible() && one->toPlainText() == text;
        return found;
    }
    EmojiPicker *picker() const { return view->findChild<EmojiPicker *>(); }
    static QStringList types() {
        QStringList types;
        for (const TypeEmojiMapping &mapping : Settings::shared().typeEmojiMappings())
            types.append(mapping.type);
        return types;
    }

    std::unique_ptr<PreferencesView> view;
};
