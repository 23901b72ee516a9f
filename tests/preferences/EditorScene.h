#pragma once

#include "fakes/FakePlatform.h"
#include "preferences/template/AutocompleteList.h"
#include "preferences/template/PlaceholderTextView.h"
#include "preferences/template/ResizeGrip.h"
#include "preferences/template/TemplateFieldBlock.h"
#include "storage/Settings.h"

#include <QAbstractButton>
#include <QTest>
#include <QVBoxLayout>

/// A window with the editor of the Jira template, below which there is room for the popover.
struct EditorScene : FakePlatform {
    explicit EditorScene(const QString &text = "{key} ") {
        Settings::shared().displayTemplate = text;
        auto *column = new QVBoxLayout(&window);
        block =
            new TemplateFieldBlock(Settings::shared().displayTemplate, "standard",
                                   TemplateCatalog::placeholders(), TemplateField::Grip::Resizes);
        column->addWidget(block);
        column->addStretch();
        window.resize(460, 300);
        window.show();
        window.move(100, 20);
        field = block->findChild<TemplateField *>();
        view = field->textView();
        view->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&window, 15000));
        QTRY_VERIFY(view->hasFocus());
    }

    QString text() const { return Settings::shared().displayTemplate(); }
    void keys(const QString &text) { QTest::keyClicks(view, text); }
    void key(Qt::Key key) { QTest::keyClick(view, key); }
    void click(const QString &title) {
        for (auto *button : block->findChildren<QAbstractButton *>()) {
            if (button->text() == title)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    void drag(int from, int to) {
        auto *grip = field->findChild<ResizeGrip *>(); // moves along, so places are on the screen
        const QPoint start = grip->mapToGlobal(QPoint(6, 6));
        const auto at = [&](int y) { return grip->mapFromGlobal(start + QPoint(0, y)); };
        QTest::mousePress(grip, Qt::LeftButton, {}, at(0));
        QTest::mouseMove(grip, at(from));
        QTest::mouseMove(grip, at(to));
        QTest::mouseRelease(grip, Qt::LeftButton, {}, at(to));
    }

    QWidget window;
    TemplateFieldBlock *block;
    TemplateField *field;
    PlaceholderTextView *view;
};
