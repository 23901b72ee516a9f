#pragma once

#include "preferences/kit/Symbols.h"

#include <QPushButton>

#include <optional>

/// A push button in the house style: a title, a symbol or both. Clicking it leaves the focus where
/// it is; the Tab key reaches it.
class Button : public QPushButton {
    Q_OBJECT

public:
    enum class Kind {
        Bordered,
        Prominent, ///< filled with the accent colour
        Borderless,
    };

    explicit Button(const QString &title, QWidget *parent = nullptr);
    Button(Symbol symbol, const QString &title, QWidget *parent = nullptr);

    /// A borderless symbol with `name` for those who don't see it; put `tip` as its tooltip.
    static Button *iconOnly(Symbol symbol, const QString &name, const QString &tip,
                            QWidget *parent = nullptr);

    void setKind(Kind kind);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor contentColour() const;
    void paintBody(QPainter &painter) const;

    Kind m_kind = Kind::Bordered;
    std::optional<Symbol> m_symbol;
};
