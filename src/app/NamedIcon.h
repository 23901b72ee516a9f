#pragma once

#include <QIcon>
#include <QString>

/// `picture` as an icon that also has a name. Status areas that know the name in their theme draw
/// that one, in their own colours; the others draw the picture.
QIcon namedIcon(const QString &name, const QIcon &picture);
