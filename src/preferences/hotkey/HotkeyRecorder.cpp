#include "preferences/hotkey/HotkeyRecorder.h"

#include "desktop/HotkeyManager.h"
#include "platform/wording.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/Style.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace {

using HotkeyFormat::defaultHotkey;

const QString primaryTitle = u"Shortcut"_s;
const QString alternateTitle = u"Alternate"_s;

} // namespace

HotkeyRecorder::HotkeyRecorder(RecordedHotkey hotkey, QWidget *parent)
    : QWidget(parent), m_hotkey(hotkey), m_atStart(HotkeyRecording::stored(hotkey)) {
    const bool isPrimary = hotkey == RecordedHotkey::Primary;
    m_label = fieldLabel(isPrimary ? primaryTitle : alternateTitle);
    m_record = new Button({});
    m_restore = new Button(isPrimary ? u"Reset"_s : u"Clear"_s);
    m_record->setToolTip(
        isPrimary ? u"Click, then press the key combination you want to use."_s
                  : u"Click, then press a key combination. Useful when your laptop and external "
                    "keyboard have different modifier layouts."_s);
    m_restore->setToolTip(isPrimary
                              ? u"Reset to %1 (the default hotkey)."_s.arg(wording().describeHotkey(
                                    defaultHotkey.keyCode, defaultHotkey.modifiers))
                              : u"Remove the alternate shortcut."_s);
    m_restore->setAccessibleDescription(m_label->text());
    if (isPrimary)
        makeDefault();

    m_problem = new Caption({});
    Style::dress(m_problem, Style::TextRole::Caption, Style::ColourRole::Warning);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addLayout(buttonRow());
    column->addWidget(m_problem);

    HotkeyRecording &recording = HotkeyRecording::shared();
    connect(m_record, &QPushButton::clicked, this,
            [hotkey] { HotkeyRecording::shared().toggle(hotkey); });
    connect(m_restore, &QPushButton::clicked, this, [hotkey, isPrimary] {
        HotkeyRecording::shared().store(hotkey, isPrimary ? defaultHotkey : KeyCombo{});
    });
    connect(&recording, &HotkeyRecording::changed, this, &HotkeyRecorder::refresh);
    connect(&Settings::shared(), &Settings::didChange, this, &HotkeyRecorder::refresh);
    connect(&HotkeyManager::shared(), &HotkeyManager::installed, this,
            &HotkeyRecorder::refreshProblem);
    alignLabel();
    refresh();
}

HotkeyRecorder::~HotkeyRecorder() {
    HotkeyRecording::shared().setOnScreen(m_hotkey, false);
}

bool HotkeyRecorder::event(QEvent *event) {
    if (event->type() == QEvent::ApplicationFontChange)
        alignLabel();
    return QWidget::event(event);
}

void HotkeyRecorder::showEvent(QShowEvent *event) {
    HotkeyRecording::shared().setOnScreen(m_hotkey, true);
    QWidget::showEvent(event);
}

void HotkeyRecorder::hideEvent(QHideEvent *event) {
    HotkeyRecording::shared().setOnScreen(m_hotkey, false);
    QWidget::hideEvent(event);
}

QLayout *HotkeyRecorder::buttonRow() {
    auto *row = new QHBoxLayout;
    row->setSpacing(Style::rowSpacing);
    row->addWidget(m_label);
    row->addWidget(m_record);
    row->addWidget(m_restore);
    row->addStretch();
    return row;
}

/// Outside of dialogs the toolkit knows no default button.
void HotkeyRecorder::makeDefault() {
    m_record->setKind(Button::Kind::Prominent);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, this);
        connect(shortcut, &QShortcut::activated, this, [this] {
            // A button that has the focus comes first, as everywhere.
            auto *focused = qobject_cast<QPushButton *>(QApplication::focusWidget());
            (focused ? focused : m_record)->click();
        });
    }
}

/// The two rows stand above each other; their buttons begin at the same place.
void HotkeyRecorder::alignLabel() {
    const QFontMetrics metrics(Style::font(Style::TextRole::Label));
    m_label->setMinimumWidth(std::max(metrics.horizontalAdvance(primaryTitle),
                                      metrics.horizontalAdvance(alternateTitle)));
}

void HotkeyRecorder::refresh() {
    const Settings &settings = Settings::shared();
    const bool isPrimary = m_hotkey == RecordedHotkey::Primary;
    const QString stored = isPrimary ? settings.hotkeyDisplay() : settings.hotkey2Display();
    m_record->setText(HotkeyRecording::shared().current() == m_hotkey ? u"Press keys…"_s : stored);
    m_record->setAccessibleName(m_label->text() + u": "_s + m_record->text());
    m_restore->setVisible(isPrimary || settings.hotkey2IsSet());
    refreshProblem();
}

void HotkeyRecorder::refreshProblem() {
    const KeyCombo combo = HotkeyRecording::stored(m_hotkey);
    const bool isRecording = HotkeyRecording::shared().current() == m_hotkey;
    const bool isOld = !combo.isSet() && combo == m_atStart;
    const QString problem =
        isRecording || isOld ? QString() : HotkeyManager::shared().problemOf(combo);
    m_problem->setVisible(!problem.isEmpty());
    m_problem->setText(wording().describeHotkey(combo.keyCode, combo.modifiers) + u' ' + problem +
                       u'.');
    m_record->setAccessibleDescription(problem.isEmpty() ? QString() : m_problem->text());
}
