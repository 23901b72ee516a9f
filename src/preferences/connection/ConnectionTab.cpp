#include "preferences/connection/ConnectionTab.h"

#include "desktop/Access.h"
#include "platform/Platform.h"
#include "preferences/connection/Addresses.h"
#include "preferences/connection/TokenBlock.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/kit/Divider.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/LinkButton.h"
#include "preferences/kit/ResultLine.h"
#include "preferences/kit/Style.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QPointer>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

void openTokenPage() {
    if (!Platform::current().workspace->openUrl(QUrl(Addresses::tokenPage())))
        log(u"preferences: nothing on this desktop opens "_s + Addresses::tokenPage());
}

/// A field with its label above it, that shows a setting and stores what is typed.
QLayout *settingField(const QString &title, const QString &prompt, Setting<QString> &setting) {
    auto *field = new BorderedField(prompt);
    field->setAccessibleName(title);
    auto *label = fieldLabel(title);
    label->setBuddy(field);
    const auto refresh = [field, &setting] { field->follow(setting()); };
    QObject::connect(&Settings::shared(), &Settings::didChange, field, refresh);
    QObject::connect(field, &QLineEdit::textChanged, field,
                     [&setting](const QString &text) { setting.type(text); });
    refresh();

    auto *column = new QVBoxLayout;
    column->setSpacing(Style::tightSpacing);
    column->addWidget(label);
    column->addWidget(field);
    return column;
}

} // namespace

ConnectionTab::ConnectionTab(QWidget *parent) : QWidget(parent), m_keyring(new ResultLine) {
    auto *manageTokens =
        new LinkButton(u"Create or manage API tokens at "_s + Addresses::accountSite());
    manageTokens->setToolTip(u"Opens the Atlassian API tokens page in your browser."_s);
    connect(manageTokens, &QPushButton::clicked, this, &openTokenPage);

    constexpr qreal faint = 0.5;
    Settings &settings = Settings::shared();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::sectionSpacing);
    auto *site = new QVBoxLayout;
    site->setSpacing(Style::blockSpacing);
    site->addLayout(settingField(u"Base URL"_s, Addresses::exampleSite(), settings.baseURL));
    site->addLayout(settingField(u"Atlassian Email"_s, Addresses::exampleEmail(), settings.email));
    site->addWidget(manageTokens, 0, Qt::AlignLeft);
    column->addLayout(site);
    column->addWidget(m_keyring);
    column->addWidget(new Divider(faint));
    column->addWidget(new TokenBlock(ConnectionTest::Product::Jira));
    column->addWidget(new Divider(faint));
    column->addWidget(new TokenBlock(ConnectionTest::Product::Confluence));
    column->addStretch();
}

// At each look, since a keyring may have come meanwhile.
void ConnectionTab::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    Platform::current().secretStore->findState(
        [line = QPointer(m_keyring)](SecretStore::State state) {
            if (!line)
                return;
            const bool isThere = state != SecretStore::State::None;
            line->setResult(isThere ? ResultLine::State::Idle : ResultLine::State::Warning,
                            isThere ? QString() : Access::keyringProblem());
        });
}
