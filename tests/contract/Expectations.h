#pragma once

#include <QDebug>
#include <QString>

/// The first expectation that was not met, in words.
class Expectations {
public:
    template <class T>
    Expectations &equal(const QString &what, const T &is, const T &shouldBe) {
        return holds(QStringLiteral("%1: %2 instead of %3")
                         .arg(what, QDebug::toString(is), QDebug::toString(shouldBe)),
                     is == shouldBe);
    }
    Expectations &holds(const QString &what, bool does) {
        if (!does && m_failure.isEmpty())
            m_failure = what;
        return *this;
    }
    operator QString() const { return m_failure; }

private:
    QString m_failure;
};
