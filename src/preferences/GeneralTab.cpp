#include "preferences/GeneralTab.h"

#include "clipboard/Clipboard.h"
#include "desktop/HotkeyManager.h"
#include "desktop/LoginItem.h"
#include "platform/Platform.h"
#include "platform/wording.h"
#include "preferences/DesktopNotice.h"
#include "preferences/FormatPicker.h"
#include "preferences/SettingsBinding.h"
#include "preferences/hotkey/DesktopHotkey.h"
#include "preferences/hotkey/HotkeyRecorder.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/Switch.h"
#include "preferences/kit/WrappingText.h"
#include "preferences/template/TemplatePreview.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPointer>

using namespace Qt::StringLiterals;

GeneralTab::GeneralTab(JiraPreviewSource &sample, QWidget *parent)
    : QWidget(parent), m_sample(sample) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::sectionSpacing);
    m_notice = new DesktopNotice;
    column->addWidget(m_notice);
    column->addWidget(hotkeySection());
    column->addWidget(startupSection());
    column->addWidget(outputSection());
    column->addStretch();
}

QWidget *GeneralTab::hotkeySection() {
    m_hotkeySection = new QWidget;
    sectionColumn(m_hotkeySection, u"Hotkey"_s);
    refreshHotkeys();
    // The desktop may answer late, or have changed its mind.
    connect(&HotkeyManager::shared(), &HotkeyManager::installed, this, &GeneralTab::refreshHotkeys);
    return m_hotkeySection;
}

QWidget *GeneralTab::recorders() {
    auto *both = new QWidget;
    auto *column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(new HotkeyRecorder(RecordedHotkey::Primary));
    column->addWidget(new HotkeyRecorder(RecordedHotkey::Alternate));
    column->addWidget(new Caption(
        u"Both shortcuts fire the same Enrich action. Pick combos that nothing else on your %1 "
        "uses — global hotkeys are exclusive."_s.arg(wording().computer)));
    return both;
}

void GeneralTab::refreshHotkeys() {
    const auto choice = DesktopHotkey::choice();
    if (choice && !m_desktopHotkey)
        m_hotkeySection->layout()->addWidget(m_desktopHotkey = new DesktopHotkey);
    if (!choice && !m_recorders)
        m_hotkeySection->layout()->addWidget(m_recorders = recorders());
    if (choice)
        m_desktopHotkey->setChoice(*choice);
    if (m_desktopHotkey)
        m_desktopHotkey->setVisible(choice.has_value());
    if (m_recorders)
        m_recorders->setVisible(!choice);
}

bool GeneralTab::event(QEvent *event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate) {
        m_notice->refresh();
        refreshHotkeys();
    }
    return QWidget::event(event);
}

QWidget *GeneralTab::startupSection() {
    auto *section = new QWidget;
    QVBoxLayout *column = sectionColumn(section, u"Startup"_s);
    m_launchAtLogin = new Switch(u"Launch at login"_s);
    m_launchAtLogin->setOn(LoginItem::isEnabled());
    connect(m_launchAtLogin, &Switch::switched, this, &GeneralTab::launchAtLoginSwitched);
    column->addWidget(m_launchAtLogin);
    return section;
}

void GeneralTab::launchAtLoginSwitched(bool on) {
    LoginItem::setEnabled(on);
    // The desktop has the last word; by then it has spoken.
    constexpr std::chrono::milliseconds pause{300};
    Platform::current().dispatch->after(pause, [tab = QPointer(this)] {
        if (tab)
            tab->m_launchAtLogin->setOn(LoginItem::isEnabled());
    });
}

QWidget *GeneralTab::outputSection() {
    auto *section = new QWidget;
    QVBoxLayout *column = sectionColumn(section, u"Output"_s);
    column->addWidget(fieldLabel(u"Paste format"_s));
    column->addWidget(makeFormatPicker(u"Paste format"_s, PasteFormats::linkFormats,
                                       Settings::shared().pasteFormat));
    column->addWidget(
        new Caption(u"Rich Link works in Slack/Mail. Markdown for GitHub/Notion. Plain for "
                    "terminals. Applies to both Jira and Confluence links."_s));
    column->addWidget(exampleLine());
    column->addSpacing(Style::tightSpacing);
    column->addWidget(restoreSwitch());
    column->addWidget(new Caption(
        u"The hotkey behaves like paste-special: about half a second after the enriched link "
        "lands, whatever you'd copied comes back — so a plain %1 later pastes the original, not "
        "the formatted link. Applies to ID links too. Enrich Clipboard Only always keeps the "
        "enriched link."_s.arg(wording().pasteKeys)));
    return section;
}

QWidget *GeneralTab::exampleLine() {
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Style::tightSpacing);
    auto *label = new Caption(u"Example:"_s);
    label->setWordWrap(false);
    label->setContentsMargins(0, 3, 0, 0); // level with the text beside it, which has a margin
    m_example = new WrappingText(u"Example"_s);
    row->addWidget(label, 0, Qt::AlignTop);
    row->addWidget(m_example, 1);
    connect(&m_sample, &PreviewSource::changed, this, &GeneralTab::refreshExample);
    followSettings(this, [this] { refreshExample(); });
    return line;
}

void GeneralTab::refreshExample() {
    const PasteFormat format = Settings::shared().pasteFormat();
    const QString rendered = m_sample.rendered();
    if (format == PasteFormat::RichLink)
        m_example->showLink(styledMarked(rendered), Style::TextRole::Caption);
    else
        m_example->showPlain(Clipboard::plainRepresentation(rendered, m_sample.url(), format),
                             Style::TextRole::CodeCaption, Style::ColourRole::Primary);
}

QWidget *GeneralTab::restoreSwitch() {
    auto *restore = new Switch(u"Restore original clipboard after paste"_s);
    connect(restore, &Switch::switched, this,
            [](bool on) { Settings::shared().restoreClipboardAfterPaste = on; });
    followSettings(restore,
                   [restore] { restore->setOn(Settings::shared().restoreClipboardAfterPaste()); });
    return restore;
}
