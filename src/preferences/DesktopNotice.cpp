#include "preferences/DesktopNotice.h"

#include "desktop/Access.h"
#include "platform/Platform.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Style.h"

#include <QPointer>
#include <QVBoxLayout>

DesktopNotice::DesktopNotice(QWidget *parent) : QWidget(parent), m_ask(new Button({})) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(&m_line);
    column->addWidget(m_ask, 0, Qt::AlignLeft);
    connect(m_ask, &QPushButton::clicked, this, &DesktopNotice::ask);
    Platform::current().pasteKeys->onAccessChange([notice = QPointer(this)] {
        if (notice)
            notice->refresh();
    });
    refresh();
}

void DesktopNotice::refresh() {
    const QString text = Access::notice();
    const QString offer = Access::clipboardProblem().isEmpty() ? Access::consentOffer() : QString();
    m_ask->setText(offer);
    m_ask->setVisible(!offer.isEmpty());
    m_line.setResult(text.isEmpty() ? ResultLine::State::Idle : ResultLine::State::Warning, text);
    setVisible(!text.isEmpty());
}

void DesktopNotice::ask() {
    m_ask->setEnabled(false); // one question at a time
    Access::askForConsent([notice = QPointer(this)] {
        if (!notice)
            return;
        notice->m_ask->setEnabled(true);
        notice->refresh();
    });
}
