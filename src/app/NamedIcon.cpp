#include "app/NamedIcon.h"

#include <QIconEngine>

namespace {

class NamedIconEngine : public QIconEngine {
public:
    NamedIconEngine(const QString &name, const QIcon &picture) : m_name(name), m_picture(picture) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode,
               QIcon::State state) override {
        m_picture.paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        return m_picture.pixmap(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return m_picture.availableSizes(mode, state);
    }
    QString iconName() override { return m_name; }
    QIconEngine *clone() const override { return new NamedIconEngine(*this); }

private:
    QString m_name;
    QIcon m_picture;
};

} // namespace

QIcon namedIcon(const QString &name, const QIcon &picture) {
    return QIcon(new NamedIconEngine(name, picture));
}
