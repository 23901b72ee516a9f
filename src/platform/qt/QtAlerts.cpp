#include "platform/qt/QtAlerts.h"

#include "model/AppInfo.h"

#include <QMessageBox>
#include <QPushButton>

void QtAlerts::show(const Alert &alert, std::function<void(int)> chosen) {
    auto *box = new QMessageBox;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(AppInfo::displayName());
    box->setIcon(alert.style == Alert::Style::Warning ? QMessageBox::Warning
                                                      : QMessageBox::Information);
    box->setTextFormat(Qt::PlainText);
    box->setText(alert.message);
    box->setInformativeText(alert.informativeText);
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
    box->open();
    box->raise();
    box->activateWindow();
}
