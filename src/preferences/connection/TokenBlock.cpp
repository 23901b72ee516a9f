#include "preferences/connection/TokenBlock.h"

#include "preferences/connection/Addresses.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/ResultLine.h"
#include "preferences/kit/Style.h"
#include "storage/Settings.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// What differs between the products.
struct Words {
    QString name;
    QString header;
    QString prompt;
    QString caption;
    QString help;
};

QString helpText(const QString &product, const QString &scope, const QString &note) {
    return u"How to get a scoped %1 API token:\n"
           "• Go to %2 → Security → API tokens\n"
           "• Click \"Create API token with scopes\" (not the plain button)\n"
           "• Pick app: %1, then your site\n"
           "• Scope: %3\n"
           "• Set a 90-day expiry\n"
           "• Copy the token, paste it here, click Save Token"_s.arg(
               product, Addresses::accountSite(), scope) +
           note;
}

const Words &words(ConnectionTest::Product product) {
    static const Words jira{
        u"Jira"_s, u"Jira"_s, u"Paste your scoped Jira token here"_s,
        u"Scoped token with the read:jira-work scope. Hover the field for instructions."_s,
        helpText(u"Jira"_s,
                 u"read:jira-work (add read:me to also show your name in Test Connection)"_s, {})};
    static const Words confluence{
        u"Confluence"_s, u"Confluence (optional)"_s, u"Paste your scoped Confluence token here"_s,
        u"A separate scoped token with the read:page:confluence scope. Leave blank to skip "
        "Confluence links. Hover the field for instructions."_s,
        helpText(u"Confluence"_s, u"read:page:confluence"_s,
                 u"\n(Atlassian tokens are single-product, so this is separate from Jira's.)"_s)};
    return product == ConnectionTest::Product::Jira ? jira : confluence;
}

QString ageText(qint64 days) {
    const QString age = days == 0   ? u"Token saved today."_s
                        : days == 1 ? u"Token saved 1 day ago."_s
                                    : u"Token saved %1 days ago."_s.arg(days);
    return days < Settings::tokenRotateNudgeAfterDays ? age : age + u" — consider rotating."_s;
}

} // namespace

TokenBlock::TokenBlock(ConnectionTest::Product product, QWidget *parent)
    : QWidget(parent),
      m_test(product),
      m_token(new BorderedField(words(product).prompt)),
      m_save(new Button(u"Save Token"_s)),
      m_try(new Button(u"Test Connection"_s)),
      m_result(new ResultLine) {
    const Words &texts = words(product);
    m_token->setEchoMode(QLineEdit::Password);
    m_token->setToolTip(texts.help);
    m_token->setAccessibleName(texts.name + u" API Token"_s);
    m_token->setAccessibleDescription(texts.help);
    auto *label = fieldLabel(u"API Token"_s);
    label->setBuddy(m_token);
    m_save->setKind(Button::Kind::Prominent);
    m_save->setAccessibleDescription(texts.name);
    m_try->setAccessibleDescription(texts.name);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Style::rowSpacing);
    buttons->addWidget(m_save);
    buttons->addWidget(m_try);
    buttons->addStretch();

    QVBoxLayout *column = sectionColumn(this, texts.header);
    column->addSpacing(Style::blockSpacing - Style::tightSpacing);
    column->addWidget(label);
    column->addWidget(m_token);
    column->addWidget(new Caption(texts.caption));
    if (product == ConnectionTest::Product::Jira) {
        m_age = new Caption({});
        column->addWidget(m_age);
        connect(&Settings::shared(), &Settings::didChange, this, &TokenBlock::refreshAge);
        refreshAge();
    }
    column->addSpacing(Style::blockSpacing - Style::tightSpacing);
    column->addLayout(buttons);
    column->addWidget(m_result);

    connect(m_token, &QLineEdit::returnPressed, this, [this] { m_test.save(m_token->text()); });
    connect(m_save, &QPushButton::clicked, this, [this] { m_test.save(m_token->text()); });
    connect(m_try, &QPushButton::clicked, this, [this] { m_test.test(m_token->text()); });
    connect(&m_test, &ConnectionTest::tokenLoaded, this, [this](const QString &token) {
        if (m_token->text().isEmpty()) // else the user has another in mind
            m_token->setText(token);
    });
    connect(&m_test, &ConnectionTest::changed, this, &TokenBlock::refresh);
    refresh();
}

void TokenBlock::showEvent(QShowEvent *event) {
    refreshAge(); // days pass while nobody looks
    QWidget::showEvent(event);
}

void TokenBlock::refresh() {
    for (QWidget *control : std::initializer_list<QWidget *>{m_token, m_save, m_try})
        control->setEnabled(m_test.isLoaded());
    const ResultLine::State state = m_test.message().isEmpty() ? ResultLine::State::Idle
                                    : m_test.isBusy()          ? ResultLine::State::Busy
                                    : m_test.isError()         ? ResultLine::State::Warning
                                                               : ResultLine::State::Success;
    m_result->setResult(state, m_test.message());
}

void TokenBlock::refreshAge() {
    if (!m_age)
        return;
    const auto days = Settings::shared().daysSinceTokenSaved();
    m_age->setVisible(days.has_value());
    if (!days)
        return;
    m_age->setText(ageText(*days));
    Style::dress(m_age, Style::TextRole::Caption,
                 Settings::shared().tokenIsAging() ? Style::ColourRole::Warning
                                                   : Style::ColourRole::Secondary);
}
