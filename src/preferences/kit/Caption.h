#pragma once

#include <QHash>
#include <QLabel>
#include <QTextLayout>

/// An explanation in a quieter colour that wraps. Its text is taken literally.
class Caption : public QLabel {
    Q_OBJECT

public:
    explicit Caption(const QString &text, QWidget *parent = nullptr);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void renew() const;
    void breakLines(int width) const;

    // Windows are measured many times over while they are put together. A label finds its lines
    // anew each time, glyph by glyph, which was a quarter of what it cost to open one.
    mutable QTextLayout m_lines;
    mutable int m_width = -1;          ///< for which m_lines are broken
    mutable qreal m_height = 0;        ///< of m_lines
    mutable QHash<int, int> m_heights; ///< of the text alone, by its width
};
