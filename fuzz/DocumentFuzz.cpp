#include "clients/JiraClient.h"
#include "fuzz/Fuzz.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr int deepest = 99;

/// What a walk over the tree counts, apart from how the text is put together.
struct Tally {
    QString text;             ///< of the text nodes that count, in order
    qsizetype separators = 0; ///< between neighbours on levels that count
};

void count(const QJsonValue &node, int depth, Tally &tally) {
    if (depth > deepest)
        return;
    const QJsonObject object = node.toObject();
    if (object["type"_L1].toString() == u"text" && object["text"_L1].isString()) {
        tally.text += object["text"_L1].toString();
        return;
    }
    const QJsonArray children = node.isArray() ? node.toArray() : object["content"_L1].toArray();
    tally.separators += std::max<qsizetype>(0, children.size() - 1);
    for (const auto &child : children)
        count(child, depth + 1, tally);
}

void check(const QJsonValue &node) {
    const QString text = JiraClient::adfPlainText(node, 0);
    Tally tally;
    count(node, 0, tally);
    Fuzz::require(text.size() == tally.text.size() + tally.separators,
                  "the text nodes and one space between neighbours, nothing else");
    Fuzz::require(QString(text).remove(u' ') == tally.text.remove(u' '), "the texts in order");

    const QString lower = JiraClient::adfPlainText(node, 1);
    Fuzz::require(JiraClient::adfPlainText(QJsonArray{node}, 0) == lower, "an array is a level");
    const QJsonObject paragraph{{u"type"_s, u"paragraph"_s},
                                {u"content"_s, QJsonArray{node, node}}};
    Fuzz::require(JiraClient::adfPlainText(paragraph, 0) == lower + u' ' + lower,
                  "neighbours are joined by one space, empty ones too");
    Fuzz::require(JiraClient::adfPlainText(node, deepest + 1).isEmpty(),
                  "what is too deep counts as empty");
}

/// A tree written as a byte a node, since random bytes are seldom nested JSON: brackets nest,
/// letters are text nodes and everything else a node without text. "[[[…" goes deeper than the
/// limit.
QJsonValue tree(const QByteArray &bytes, qsizetype &position, int depth) {
    QJsonArray children;
    while (position < bytes.size()) {
        const char byte = bytes[position++];
        if (byte == ']')
            break;
        if ((byte == '[' || byte == '(') && depth < 130) {
            const QJsonValue inner = tree(bytes, position, depth + 1);
            children.append(
                byte == '[' ? inner : QJsonObject{{u"type"_s, u"list"_s}, {u"content"_s, inner}});
        } else if (byte >= 'a' && byte <= 'z') {
            children.append(QJsonObject{{u"type"_s, u"text"_s},
                                        {u"text"_s, QString(byte - 'a', QLatin1Char(byte))}});
        } else {
            children.append(QJsonObject{{u"type"_s, u"mention"_s}, {u"text"_s, u"@Ann"_s}});
        }
    }
    return children;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isObject())
        check(document.object());
    else if (document.isArray())
        check(document.array());
    qsizetype position = 0;
    check(tree(bytes.first(std::min<qsizetype>(bytes.size(), 400)), position, 0));
    return 0;
}
