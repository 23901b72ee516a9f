#pragma once

#include "preferences/hotkey/HotkeyRecording.h"

#include <QWidget>

class Button;
class Caption;
class QLabel;

/// One hotkey row of the General tab: its label, the button that records, and "Reset" (primary) or
/// "Clear" (alternate), and a line below when the hotkey can't be had. What it records is stored
/// and registered at once. While the row is not on the screen a recording pauses. The button of the
/// primary answers Return in the whole window. The caption below the two rows is not part of them.
/// Main thread only.
class HotkeyRecorder : public QWidget {
    Q_OBJECT

public:
    explicit HotkeyRecorder(RecordedHotkey hotkey, QWidget *parent = nullptr);
    ~HotkeyRecorder() override;

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void makeDefault();
    void alignLabel();
    QLayout *buttonRow();
    void refresh();
    void refreshProblem();

    RecordedHotkey m_hotkey;
    KeyCombo m_atStart; ///< what an earlier session left behind is no news
    QLabel *m_label = nullptr;
    Button *m_record = nullptr;
    Button *m_restore = nullptr; ///< "Reset" or "Clear"
    Caption *m_problem = nullptr;
};
