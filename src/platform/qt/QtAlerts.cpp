#include "platform/qt/QtAlerts.h"

#include "model/AppInfo.h"

#include <QApplication>
#include <QPushButton>
#include <QStyle>

namespace {

QMessageBox *makeBox(const Alert &alert, std::function<void(int)> chosen) {
    auto *box = new QMessageBox;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(AppInfo::displayName());
    if (alert.style == Alert::Style::Warning) {
        box->setIcon(QMessageBox::Warning);
    } else {
        const int side = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
        box->setIconPixmap(QApplication::windowIcon().pixmap(side));
    }
    box->setTextFormat(Qt::PlainText);
    box->setText(alert.message);
    for (const QString &title : alert.buttons) {
        auto *button = new QPushButton(title, box);
        // One role for all: the box then keeps the buttons in the order in which they were added.
        box->addButton(button, QMessageBox::AcceptRole);
        if (box->buttons().size() == 1)
            box->setDefaultButton(button);
    }
    if (box->buttons().size() == alert.buttons.size() && !alert.buttons.isEmpty())
        box->setEscapeButton(box->buttons().constLast());
    QObject::connect(box, &QDialog::finished, box,
                     [box, titles = alert.buttons, chosen = std::move(chosen)] {
                         const QAbstractButton *button = box->clickedButton();
                         chosen(button ? static_cast<int>(titles.indexOf(button->text())) : -1);
                     });
    return box;
}

} // namespace

void QtAlerts::show(const Alert &alert, std::function<void(int)> chosen) {
    QPointer<QMessageBox> &box = m_open[alert.message];
    if (!box || !box->isVisible())
        box = makeBox(alert, std::move(chosen));
    box->setInformativeText(alert.informativeText);
    box->setWindowState(box->windowState() & ~Qt::WindowMinimized);
    box->open();
    box->raise();
    box->activateWindow();
}
