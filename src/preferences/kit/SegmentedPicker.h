#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

/// A choice of a few, side by side in one bar. Arrow keys move the choice.
class SegmentedPicker : public QWidget {
    Q_OBJECT

public:
    /// `name` is what the choice is about, for those who don't see it.
    SegmentedPicker(const QString &name, const QStringList &titles, QWidget *parent = nullptr);

    int current() const { return m_segments.checkedId(); }
    /// Chooses without telling anyone.
    void setCurrent(int index);

Q_SIGNALS:
    /// The user chose.
    void picked(int index);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QButtonGroup m_segments;
    bool m_settingCurrent = false;
};
