#include "fuzz/Fuzz.h"
#include "fuzz/RtfReader.h"
#include "model/MarkedText.h"

#include <algorithm>

namespace {

/// What a reader should see of a run's text: line ends as line feeds, no controls, no half pairs.
QString readable(const QString &text) {
    QString seen;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        const QChar next = i + 1 < text.size() ? text[i + 1] : QChar();
        if (unit == u'\r' && next == u'\n')
            continue;
        if (QStringView(u"\n\v\f\r\u0085\u2028\u2029").contains(unit))
            seen += u'\n';
        else if (unit.isHighSurrogate() && next.isLowSurrogate())
            seen += QStringView(text).sliced(i++, 2);
        else if (unit.isSurrogate())
            seen += QChar(QChar::ReplacementCharacter);
        else if (unit == u'\t' || unit.category() != QChar::Other_Control)
            seen += unit;
    }
    return seen;
}

/// `content` as the runs of marked text would have it; `link` is to be the address of all of them.
AttributedText asRuns(const RtfContent &content, const QString &link) {
    AttributedText text;
    for (const RtfContent::Run &run : content.runs) {
        Fuzz::require(run.link == link, "the link is over the whole text");
        text.append(run.text, run.italic, run.bold);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Fuzz::Fields fields(data, size);
    AttributedText text = Enrichment::attributedFromMarked(fields.nextText());
    const QString address = fields.nextText();
    const QUrl link(address, fields.atEnd() ? QUrl::StrictMode : QUrl::TolerantMode);
    text.setLink(link);

    const QByteArray rtf = text.toRtf();
    Fuzz::require(std::all_of(rtf.begin(), rtf.end(), [](char c) { return c >= ' ' && c <= '~'; }),
                  "RTF is printable ASCII");
    const auto content = readRtf(rtf);
    Fuzz::require(content.has_value(), "RTF is well-formed");
    AttributedText expected;
    for (const AttributedText::Run &run : text.runs())
        expected.append(readable(run.text), run.italic, run.bold);
    const bool isLinked = link.isValid() && !text.runs().isEmpty();
    const AttributedText seen =
        asRuns(*content, isLinked ? QString::fromLatin1(link.toEncoded()) : QString());
    Fuzz::require(seen.runs() == expected.runs(), "a reader sees the text in its styles");
    return 0;
}
