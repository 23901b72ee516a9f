#pragma once

#include "preferences/hotkey/HotkeyRecorder.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/// Takes every key that is left to it.
struct KeySink : QLineEdit {
    using QLineEdit::QLineEdit;
    void keyPressEvent(QKeyEvent *) override { ++keys; }
    int keys = 0;
};

/// The two rows in a window with something else to focus.
struct RecorderWindow : QWidget {
    HotkeyRecorder primary{RecordedHotkey::Primary, this};
    HotkeyRecorder alternate{RecordedHotkey::Alternate, this};
    KeySink other{this};
};

inline QPushButton *button(const HotkeyRecorder &row, int place) {
    return row.findChildren<QPushButton *>().at(place);
}

inline void click(QPushButton *target) {
    QTest::mouseClick(target, Qt::LeftButton);
}
