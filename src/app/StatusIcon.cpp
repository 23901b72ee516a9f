#include "app/StatusIcon.h"

#include "app/NamedIcon.h"
#include "model/AppInfo.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QStandardPaths>

namespace {

constexpr qreal dimmedOpacity = 0.4;

/// The heights, in pixels, at which status areas show icons, on plain and on dense screens.
constexpr int heights[] = {16, 20, 22, 24, 32, 44, 48, 64};

/// The badge on an icon of 20 points.
constexpr qreal iconHeight = 20;
constexpr qreal badgeSize = 12;

struct Art {
    const char *name;
    bool isTemplate; ///< black with transparency already
};
constexpr Art arts[] = {{"tansy-template", true}, {"tansy-menu", false}, {"tansy", false}};

/// The first art that can be used, all of it black, or a null image.
QImage template_() {
    for (const Art &art : arts) {
        QImage image(QStringLiteral(":/icons/%1.png").arg(QLatin1String(art.name)));
        if (image.isNull() || image.height() <= 0)
            continue;
        image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (!art.isTemplate) {
            QPainter painter(&image);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), Qt::black);
        }
        return image;
    }
    return {};
}

/// Two rings of a chain, for the case that there is no art.
QImage linkSymbol() {
    constexpr int size = 64;
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 7));
    painter.drawRoundedRect(QRectF(5, 22, 34, 20), 10, 10);
    painter.drawRoundedRect(QRectF(25, 22, 34, 20), 10, 10);
    return image;
}

void drawBadge(QPainter &painter, const QSizeF &icon) {
    const qreal size = badgeSize / iconHeight * icon.height();
    const QRectF box(icon.width() - size, icon.height() - size, size, size);
    QPainterPath triangle;
    triangle.moveTo(box.center().x(), box.top());
    triangle.lineTo(box.bottomRight());
    triangle.lineTo(box.bottomLeft());
    triangle.closeSubpath();
    // Cut out of what is below, with room around it, so that it stays apart in one colour.
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.strokePath(triangle,
                       QPen(Qt::black, size / 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillPath(triangle, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    const qreal stroke = size / 7;
    painter.fillRect(
        QRectF(box.center().x() - stroke / 2, box.top() + size * 0.38, stroke, size * 0.32),
        Qt::black);
    painter.fillRect(
        QRectF(box.center().x() - stroke / 2, box.bottom() - size * 0.2, stroke, stroke),
        Qt::black);
}

/// Nobody tints a picture, and we are not told whether the panel is light or dark. This grey stands
/// out from both: its contrast is at least 3 to 1 against #f2f2f2 and 4 to 1 against #2b2b2b.
constexpr QRgb tint = qRgb(0x8a, 0x8a, 0x8a);

QImage tinted(QImage mark) {
    QPainter painter(&mark);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(mark.rect(), QColor(tint));
    return mark;
}

QPixmap faded(const QPixmap &pixmap) {
    QPixmap drawn(pixmap.size());
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setOpacity(dimmedOpacity);
    painter.drawPixmap(0, 0, pixmap);
    return drawn;
}

/// The picture under the name of the symbolic icon for that state, which panels tint, where that
/// is installed.
QIcon withSymbolicName(const QIcon &picture, bool hasBadge, bool isDimmed) {
    const QString name =
        AppInfo::bundleIdentifier() + (hasBadge ? QStringLiteral("-aging") : QString()) +
        (isDimmed ? QStringLiteral("-dimmed") : QString()) + QStringLiteral("-symbolic");
    const QString file =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                               QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name));
    return file.isEmpty() ? picture : namedIcon(name, picture);
}

} // namespace

StatusIcon::Cache StatusIcon::build(bool tokenIsAging) {
    const QImage art = template_();
    const QImage mark = art.isNull() ? linkSymbol() : art;
    Cache cache{tokenIsAging, tokenIsAging && !art.isNull(), {}, {}};
    for (const int height : heights) {
        const int width = qRound(static_cast<qreal>(mark.width()) / mark.height() * height);
        QImage image = mark.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                           .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (cache.hasBadge) {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            drawBadge(painter, image.size());
        }
        const QPixmap pixmap = QPixmap::fromImage(tinted(image));
        cache.plain.addPixmap(pixmap);
        cache.dimmed.addPixmap(faded(pixmap));
    }
    cache.plain = withSymbolicName(cache.plain, cache.hasBadge, false);
    cache.dimmed = withSymbolicName(cache.dimmed, cache.hasBadge, true);
    return cache;
}

const QIcon &StatusIcon::icon(bool tokenIsAging, bool isFetching) {
    if (!m_cache || m_cache->tokenIsAging != tokenIsAging)
        m_cache = build(tokenIsAging);
    return isFetching ? m_cache->dimmed : m_cache->plain;
}

QString StatusIcon::description() const {
    return m_cache && m_cache->hasBadge
               ? AppInfo::displayName() + QStringLiteral(" — token rotation suggested")
               : AppInfo::displayName();
}
