#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

/// A toggle with its title; a check box to the keyboard and to assistive programs.
class Switch : public QCheckBox {
    Q_OBJECT

public:
    explicit Switch(const QString &title, QWidget *parent = nullptr);

    /// Sets the state without telling anyone.
    void setOn(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user switched.
    void switched(bool on);

protected:
    bool hitButton(const QPoint &point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent *event) override;

private:
    void slide();

    bool m_settingOn = false;
    QVariantAnimation m_slide; ///< the knob's way, from 0 (off) to 1 (on)
};
