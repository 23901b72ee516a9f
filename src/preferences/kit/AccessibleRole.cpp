#include "preferences/kit/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace {

constexpr char roleProperty[] = "accessibleRole";

QAccessibleInterface *faceOf(const QString &, QObject *object) {
    const QVariant role = object->property(roleProperty);
    auto *widget = qobject_cast<QWidget *>(object);
    if (!role.isValid() || !widget)
        return nullptr;
    return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(faceOf), true);
    widget->setProperty(roleProperty, int{role});
    // One that was made before, for a change of the name perhaps, would stay what it was.
    if (QAccessible::isActive()) {
        if (QAccessibleInterface *former = QAccessible::queryAccessibleInterface(widget))
            QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
    }
}
