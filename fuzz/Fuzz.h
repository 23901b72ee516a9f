#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What every fuzz target uses.
namespace Fuzz {

/// Ends the program as a finding, with `property` as its name, unless it holds.
inline void require(bool holds, const char *property) {
    if (holds)
        return;
    std::fprintf(stderr, "broken property: %s\n", property);
    std::abort();
}

/// Bytes as text. UTF-8 cannot carry half a surrogate pair, so two private-use characters stand for
/// one: U+E0D8 for the first half of U+1F41E and U+E0DC for the second.
inline QString text(QByteArrayView bytes) {
    QString text = QString::fromUtf8(bytes);
    for (QChar &unit : text) {
        if (unit == u'\uE0D8')
            unit = QChar(0xD83D);
        else if (unit == u'\uE0DC')
            unit = QChar(0xDC1E);
    }
    return text;
}

/// The input cut at its record separators (0x1E), so that seeds can be read and written by hand.
class Fields {
public:
    Fields(const uint8_t *data, size_t size)
        : m_fields(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))
                       .split('\x1e')) {}

    /// The next field; empty when there are no more.
    QByteArray next() { return m_next < m_fields.size() ? m_fields[m_next++] : QByteArray(); }
    QString nextText() { return text(next()); }
    bool atEnd() const { return m_next >= m_fields.size(); }

private:
    QList<QByteArray> m_fields;
    qsizetype m_next = 0;
};

} // namespace Fuzz
