#pragma once

#include "preferences/kit/SelectableLabel.h"

#include <QWidget>

/// How something went: a coloured symbol and a text. Hidden while there is nothing to tell.
class ResultLine : public QWidget {
    Q_OBJECT

public:
    enum class State { Idle, Busy, Success, Warning };

    explicit ResultLine(QWidget *parent = nullptr);

    /// Shows `text` in the way of `state`; Idle hides the line.
    void setResult(State state, const QString &text = {});

    State state() const { return m_state; }
    QString text() const { return m_text.text(); }

protected:
    bool event(QEvent *event) override;

private:
    State m_state = State::Idle;
    SelectableLabel m_text;
    QWidget *m_icon;
};
