#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>

class QPainter;
class QPalette;
class QWidget;

/// The look of the windows, defined here and nowhere else. Lengths are device-independent pixels.
/// Main thread only.
namespace Style {

inline constexpr int fieldRadius = 7;
inline constexpr int fieldHorizontalPadding = 10;
inline constexpr int fieldVerticalPadding = 7;
inline constexpr int boxRadius = 8;
inline constexpr int boxPadding = 12;
inline constexpr int chipRadius = 6;
inline constexpr int buttonRadius = 7;
inline constexpr int panePadding = 28;
/// Between a label and its field, or a field and its caption.
inline constexpr int tightSpacing = 8;
/// Between things that stand side by side.
inline constexpr int rowSpacing = 10;
/// Between the blocks of a section.
inline constexpr int blockSpacing = 14;
/// Between the sections of a tab.
inline constexpr int sectionSpacing = 24;

/// What a text is, which settles its size and weight.
enum class TextRole {
    Body,        ///< 14, running text, fields and buttons
    Label,       ///< 14 medium, the name of a field
    Caption,     ///< 13, explanations
    Section,     ///< 12 semibold, spaced
    Small,       ///< 11 medium
    Code,        ///< 13 monospaced
    CodeCaption, ///< 12 monospaced
    Emoji,       ///< 18, in colour where the desktop has such a font
};

/// What a colour is for.
enum class ColourRole {
    Primary,
    Secondary,
    Accent,     ///< rings and tints
    AccentFill, ///< the accent as the ground of a text
    OnAccent,   ///< a text on it
    Link,       ///< the accent as the colour of a text
    FieldFill,
    FieldStroke,
    BoxStroke,
    Success,
    Warning,
};

/// How much larger than usual the desktop wants its text; 1 for its usual sizes, never less.
qreal textScale();

/// `length`, which has to hold text, grown by textScale().
int scaled(int length);

QFont font(TextRole role);

/// How far two opaque colours are apart in lightness: from 1, not at all, to 21.
qreal contrast(const QColor &one, const QColor &other);
/// From this contrast on a text reads well on its ground.
inline constexpr qreal textContrast = 4.5;

/// Link, Warning and OnAccent have at least textContrast to their ground, whatever the palette.
QColor colour(ColourRole role, const QPalette &palette);

/// Gives `widget` the font and the text colour, now and whenever the desktop's font or palette
/// changes. Once anything is dressed, every widget gets ApplicationFontChange events.
void dress(QWidget *widget, TextRole text, ColourRole colour = ColourRole::Primary);

/// A rounded rectangle, filled and outlined; an invalid colour leaves that part out. The outline
/// stays inside `rect`.
void paintBox(QPainter &painter, const QRectF &rect, qreal radius, const QColor &fill,
              const QColor &stroke = {}, qreal strokeWidth = 1);

/// The body of a field: filled, outlined, and ringed in the accent colour while it has the focus.
void paintField(QPainter &painter, const QRectF &rect, const QPalette &palette, bool focused);

/// The ring of a control in focus, inside `rect`.
void paintFocusRing(QPainter &painter, const QRectF &rect, qreal radius, const QPalette &palette);

} // namespace Style
