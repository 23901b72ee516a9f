#include "bench/Benches.h"

#include "clients/JiraClient.h"
#include "enrichment/TemplateRendering.h"
#include "fakes/FakePlatform.h"
#include "model/TypeEmojiMapping.h"
#include "storage/Settings.h"

#include <QJsonDocument>

namespace {

constexpr int rounds = 11;
constexpr int renderings = 20'000; // in a round
constexpr qsizetype million = 1'000'000;

const QString templateText = "{type-emoji} {key} - {TYPE} - {summary}<c> {commenter-name}: "
                             "{commenttext}</c>";
const Enrichment::TemplateValues values{
    .key = "ABC-1",
    .type = "Bug",
    .summary = "Crash on login when the café’s network is slow",
    .status = "In Progress",
    .isComment = true,
    .commentText = "The notes of last Thursday say that it happens on every third login",
    .commentAuthor = "Ann"};

/// The values put in their places and nothing else.
QString bareRendering() {
    QString text = templateText;
    text.replace("{key}", values.key);
    text.replace("{TYPE}", *values.type);
    text.replace("{summary}", values.summary);
    text.replace("{commenter-name}", *values.commentAuthor);
    text.replace("{commenttext}", *values.commentText);
    return text;
}

/// How many texts `render` makes in a second.
template <typename Render>
double perSecond(Render render) {
    qsizetype length = 0;
    const double begun = now();
    for (int i = 0; i < renderings; ++i)
        length += render().size();
    const double took = now() - begun;
    require(length > renderings * values.summary.size(), "nothing is rendered");
    return renderings / took * 1000;
}

Row benchTemplate() {
    const auto mappings = Settings::shared().typeEmojiMappings();
    const QString commentEmoji = Settings::shared().commentEmoji();
    QList<double> speeds, floorSpeeds;
    for (int round = -1; round < rounds; ++round) {
        const double speed = perSecond([&] {
            return Enrichment::renderTemplate(templateText, values, mappings, commentEmoji);
        });
        const double floorSpeed = perSecond(bareRendering);
        if (round < 0) // compiles the patterns
            continue;
        speeds.append(speed / 1000);
        floorSpeeds.append(floorSpeed / 1000);
    }
    return ratioRow("Template rendering, thousands a second", median(speeds), median(floorSpeeds),
                    "k/s", "200 k/s at least");
}

/// A comment as the gateway answers it, of about `size` bytes.
QByteArray comment(qsizetype size) {
    const QByteArray paragraph =
        R"({"type":"paragraph","content":[{"type":"text","text":"The plan of Thursday, draft 3, "},)"
        R"({"type":"text","marks":[{"type":"strong"}],"text":"is still café talk"}]})";
    QByteArray body = R"({"author":{"displayName":"Ann Lee"},"body":{"type":"doc","content":[)";
    while (body.size() < size)
        body += paragraph + ',';
    return body + paragraph + "]}}";
}

/// The milliseconds from the answer of that `body` to the comment's text.
double commentTime(FakePlatform &fakes, const QByteArray &body) {
    const QString issue = "https://api.atlassian.com/ex/jira/c-1/rest/api/3/issue/ABC-1";
    fakes.urlSession->answers = {{issue + "?fields=summary,issuetype,status",
                                  {200, R"({"fields":{"summary":"Crash"}})", {}}},
                                 {issue + "/comment/77", {200, body, {}}}};
    qsizetype length = 0;
    const double begun = now();
    JiraClient::fetchSummary(
        "ABC-1", "77", {"https://h.example", "c-1", "a", "t"},
        [&](const auto &result) { length = result.commentText.value_or(QString()).size(); });
    const double took = now() - begun;
    require(length > body.size() / 5, "the comment has no text");
    return took;
}

double parseTime(const QByteArray &body) {
    const double begun = now();
    require(QJsonDocument::fromJson(body).isObject(), "the comment is no JSON");
    return now() - begun;
}

QList<Row> benchComment(FakePlatform &fakes) {
    const QList<qsizetype> sizes{1, 5, 10};
    QList<double> medians;
    double floor = 0;
    for (const qsizetype size : sizes) {
        const QByteArray body = comment(size * million);
        QList<double> times, floorTimes;
        for (int round = 0; round < rounds; ++round) {
            times.append(commentTime(fakes, body));
            floorTimes.append(parseTime(body));
        }
        medians.append(median(times));
        floor = median(floorTimes);
    }
    return {ratioRow("Text of a comment of 10 MB, against reading its JSON", medians[2], floor,
                     "ms", ""),
            ratioRow("  the same against 5 MB", medians[2], medians[1], "ms", "about 2"),
            ratioRow("  the same against 1 MB", medians[2], medians[0], "ms", "about 10")};
}

} // namespace

QList<Row> benchRendering() {
    FakePlatform fakes;
    return QList<Row>{benchTemplate()} + benchComment(fakes);
}
