#include "platform/linux/ChangeCount.h"

#include "platform/linux/FlavourNames.h"

qint64 ChangeCount::changedByUs(const PasteboardItem &contents) {
    const auto text = FlavourNames::text(contents, PasteboardType::String);
    m_written = {++m_value, text.value_or(QString()).toUtf8()};
    return m_value;
}

void ChangeCount::settle(const std::function<std::optional<QString>()> &readText) {
    if (!m_written || m_value == m_written->count)
        return;
    const auto text = readText();
    if (text && text->toUtf8() == m_written->text)
        m_value = m_written->count;
    m_written.reset();
}
