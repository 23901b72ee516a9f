#include "preferences/kit/Style.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace Style {

namespace {

/// The largest size that desktops give their text without being asked to: 11 points at 96 dpi.
constexpr qreal usualTextSize = 11 * 96 / 72.0;
constexpr qreal focusRingWidth = 2;

bool isDark(const QPalette &palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor withOpacity(QColor colour, qreal opacity) {
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

qreal luminance(const QColor &colour) {
    const auto linear = [](qreal part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// `colour` as it is if a text in it reads on `ground`, else no more than needed lighter or darker.
QColor readable(const QColor &colour, const QColor &ground) {
    const bool darker = contrast(Qt::black, ground) > contrast(Qt::white, ground);
    const float end = darker ? 0 : 1;
    QColor found = colour;
    for (float way = 0; way < 1 && contrast(found, ground) < textContrast; way += 0.01F)
        found = QColor::fromRgbF(std::lerp(colour.redF(), end, way),
                                 std::lerp(colour.greenF(), end, way),
                                 std::lerp(colour.blueF(), end, way));
    return found;
}

/// Whether white stands on the accent, if a little deepened, as desktops have it; else black does.
bool isWhiteOnAccent(const QColor &accent) {
    constexpr qreal largeTextContrast = 3;
    return contrast(Qt::white, accent) >= largeTextContrast;
}

int nominalSize(TextRole role) {
    switch (role) {
    case TextRole::Body:
    case TextRole::Label:
        return 14;
    case TextRole::Caption:
    case TextRole::Code:
        return 13;
    case TextRole::Section:
    case TextRole::CodeCaption:
        return 12;
    case TextRole::Small:
        return 11;
    case TextRole::Emoji:
        return 18;
    }
    return 14;
}

/// Passes the news of another desktop font on to every widget: Qt tells the windows only, and those
/// inside them hear nothing when they have a size of their own.
class FontNews : public QObject {
public:
    static void spread() {
        static QPointer<FontNews> news;
        if (!news)
            news = new FontNews;
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched != parent() || event->type() != QEvent::ApplicationFontChange)
            return false;
        const QWidgetList widgets = QApplication::allWidgets();
        const QList<QPointer<QWidget>> all(widgets.begin(), widgets.end());
        for (const QPointer<QWidget> &widget : all) {
            QEvent news(QEvent::ApplicationFontChange);
            if (widget && !widget->isWindow())
                QCoreApplication::sendEvent(widget, &news);
        }
        return false;
    }

private:
    FontNews() : QObject(qApp) { qApp->installEventFilter(this); }
};

/// Keeps the font and the text colour of its parent widget in line with the desktop's.
class Dresser : public QObject {
public:
    Dresser(QWidget *widget, TextRole text, ColourRole colour)
        : QObject(widget), m_widget(widget), m_text(text), m_colour(colour) {
        widget->installEventFilter(this);
        apply();
    }

    void set(TextRole text, ColourRole colour) {
        m_text = text;
        m_colour = colour;
        apply();
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override {
        switch (event->type()) {
        case QEvent::ApplicationFontChange:
        case QEvent::PaletteChange:
        case QEvent::ParentChange:
            apply();
            break;
        default:
            break;
        }
        return false;
    }

private:
    void apply() {
        if (m_applying) // our own palette comes back as a change of palette
            return;
        m_applying = true;
        m_widget->setFont(font(m_text));
        const QWidget *parent = m_widget->parentWidget();
        const QPalette around = parent ? parent->palette() : QApplication::palette();
        QPalette own = m_widget->palette();
        const QColor wanted = colour(m_colour, around);
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
            own.setColor(role, wanted);
        m_widget->setPalette(own);
        m_applying = false;
    }

    QWidget *m_widget;
    TextRole m_text;
    ColourRole m_colour;
    bool m_applying = false;
};

} // namespace

qreal textScale() {
    const qreal size = QFontInfo(QApplication::font()).pixelSize();
    return std::max(1.0, size / usualTextSize);
}

int scaled(int length) {
    return qRound(length * textScale());
}

QFont font(TextRole role) {
    const bool fixed = role == TextRole::Code || role == TextRole::CodeCaption;
    QFont font = fixed ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QApplication::font();
    font.setPixelSize(scaled(nominalSize(role)));
    font.setWeight(QFont::Normal);
    if (role == TextRole::Label || role == TextRole::Small)
        font.setWeight(QFont::Medium);
    if (role == TextRole::Section) {
        font.setWeight(QFont::DemiBold);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.8);
    }
    // The generic family comes first, or a text font that has plain faces would draw them.
    if (role == TextRole::Emoji)
        font.setFamilies(QStringList(QStringLiteral("emoji")) + font.families());
    return font;
}

qreal contrast(const QColor &one, const QColor &other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor colour(ColourRole role, const QPalette &palette) {
    const QColor text = palette.color(QPalette::WindowText);
    const QColor accent = palette.color(QPalette::Highlight);
    const QColor window = palette.color(QPalette::Window);
    const bool dark = isDark(palette);
    switch (role) {
    case ColourRole::Primary:
        return text;
    case ColourRole::Secondary:
        return withOpacity(text, 0.64);
    case ColourRole::Accent:
        return accent;
    case ColourRole::AccentFill:
        return isWhiteOnAccent(accent) ? readable(accent, Qt::white) : accent;
    case ColourRole::OnAccent:
        return isWhiteOnAccent(accent) ? Qt::white : Qt::black;
    case ColourRole::Link:
        return readable(accent, window);
    case ColourRole::FieldFill:
        return palette.color(QPalette::Base);
    case ColourRole::FieldStroke:
        return withOpacity(text, 0.22);
    case ColourRole::BoxStroke:
        return withOpacity(text, 0.12);
    case ColourRole::Success:
        return dark ? QColor(0x4c, 0xc3, 0x6a) : QColor(0x1b, 0x7f, 0x3b);
    case ColourRole::Warning:
        return readable(dark ? QColor(0xff, 0xa0, 0x40) : QColor(0xb3, 0x57, 0x00), window);
    }
    return text;
}

void dress(QWidget *widget, TextRole text, ColourRole colour) {
    FontNews::spread();
    for (QObject *child : widget->children()) {
        if (auto *dresser = dynamic_cast<Dresser *>(child)) {
            dresser->set(text, colour);
            return;
        }
    }
    new Dresser(widget, text, colour);
}

void paintBox(QPainter &painter, const QRectF &rect, qreal radius, const QColor &fill,
              const QColor &stroke, qreal strokeWidth) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(stroke.isValid() ? QPen(stroke, strokeWidth) : QPen(Qt::NoPen));
    painter.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    const qreal inset = stroke.isValid() ? strokeWidth / 2 : 0;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
    painter.restore();
}

void paintField(QPainter &painter, const QRectF &rect, const QPalette &palette, bool focused) {
    paintBox(painter, rect, fieldRadius, colour(ColourRole::FieldFill, palette),
             colour(ColourRole::FieldStroke, palette));
    if (focused)
        paintFocusRing(painter, rect, fieldRadius, palette);
}

void paintFocusRing(QPainter &painter, const QRectF &rect, qreal radius, const QPalette &palette) {
    paintBox(painter, rect, radius, {}, colour(ColourRole::Accent, palette), focusRingWidth);
}

} // namespace Style
