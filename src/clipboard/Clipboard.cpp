#include "clipboard/Clipboard.h"

#include "clipboard/HTML.h"
#include "model/MarkedText.h"
#include "platform/Platform.h"

#include <QUrl>

namespace {

QByteArray htmlFlavour(const QString &displayText, const QString &url) {
    const QString body = Enrichment::htmlStyled(HTML::escape(displayText));
    return QStringLiteral("<a href=\"%1\">%2</a>").arg(HTML::escape(url), body).toUtf8();
}

QByteArray rtfFlavour(const QString &displayText, const QString &url) {
    AttributedText text = Enrichment::attributedFromMarked(displayText);
    const QUrl link(url, QUrl::StrictMode);
    if (link.isValid())
        text.setLink(link);
    return text.toRtf();
}

} // namespace

QString Clipboard::plainRepresentation(const QString &displayText, const QString &url,
                                       PasteFormat format) {
    switch (format) {
    case PasteFormat::Markdown:
        return QStringLiteral("[%1](%2)").arg(Enrichment::markdownStyled(displayText), url);
    case PasteFormat::UrlOnly:
        return url;
    case PasteFormat::RichLink:
    case PasteFormat::PlainText:
        break;
    }
    return QStringLiteral("%1 (%2)").arg(Enrichment::stripStyleMarkers(displayText), url);
}

QString Clipboard::write(const QString &displayText, const QString &url, PasteFormat format,
                         std::optional<qint64> ifCountIs, Pasteboard::Written done) {
    const QString plain = plainRepresentation(displayText, url, format);
    QList<std::pair<PasteboardType, QByteArray>> flavours;
    if (format == PasteFormat::RichLink) {
        flavours.append({PasteboardType::Html, htmlFlavour(displayText, url)});
        flavours.append({PasteboardType::Rtf, rtfFlavour(displayText, url)});
    }
    flavours.append({PasteboardType::String, plain.toUtf8()});
    Platform::current().pasteboard->write(flavours, ifCountIs, std::move(done));
    return plain;
}
