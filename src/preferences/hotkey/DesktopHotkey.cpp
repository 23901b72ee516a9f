#include "preferences/hotkey/DesktopHotkey.h"

#include "desktop/Access.h"
#include "platform/Platform.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/WrappingText.h"
#include "storage/LogStore.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

std::optional<Hotkeys::DesktopsChoice> DesktopHotkey::choice() {
    const Hotkeys &hotkeys = *Platform::current().hotkeys;
    if (auto choice = hotkeys.desktopsChoice())
        return choice;
    const QString reason = hotkeys.unavailableBecause();
    if (reason.isEmpty())
        return std::nullopt;
    return Hotkeys::DesktopsChoice{
        u"Brindle can't have a hotkey here: %1. Let a keyboard shortcut of the desktop run this "
        "command:"_s.arg(reason),
        {},
        u"brindle paste"_s};
}

DesktopHotkey::DesktopHotkey(QWidget *parent)
    : QWidget(parent),
      m_text(new Caption({})),
      m_line(new WrappingText(u"Line to copy"_s)),
      m_copy(new Button(u"Copy"_s)),
      m_openSettings(new Button({})) {
    auto *row = new QHBoxLayout;
    row->setSpacing(Style::rowSpacing);
    row->addWidget(m_line, 1, Qt::AlignVCenter);
    row->addWidget(m_copy, 0, Qt::AlignTop);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(m_text);
    column->addLayout(row);
    column->addWidget(m_openSettings);
    m_copy->setAccessibleDescription(m_line->accessibleName());
    connect(m_copy, &QPushButton::clicked, this, &DesktopHotkey::copyLine);
    connect(m_openSettings, &QPushButton::clicked, this, [this] { m_choice.openSettings(); });
}

void DesktopHotkey::setChoice(const Hotkeys::DesktopsChoice &choice) {
    m_choice = choice;
    m_text->setText(choice.text);
    m_line->showPlain(choice.line, Style::TextRole::Code, Style::ColourRole::Primary);
    const bool hasLine = !choice.line.isEmpty();
    m_line->setVisible(hasLine);
    m_copy->setVisible(hasLine && Access::clipboardProblem().isEmpty());
    m_openSettings->setText(choice.action.isEmpty() ? u"Open Shortcut Settings"_s : choice.action);
    m_openSettings->setVisible(choice.openSettings != nullptr);
}

void DesktopHotkey::copyLine() {
    Platform::current().pasteboard->write(
        {{PasteboardType::String, m_choice.line.toUtf8()}}, std::nullopt,
        [](const std::optional<PasteboardWrite> &written) {
            if (!written)
                log(u"preferences: the line for the hotkey could not be copied"_s);
        });
}
