#include "bench/Benches.h"

#include "enrichment/ReferenceDetection.h"

namespace {

constexpr qsizetype large = 10'000'000;
constexpr int rounds = 21;

/// The links of a page of a team's, none of which is a reference.
QString link(int number) {
    static const QStringList kinds{
        "https://www.example.org/articles/%1/how-it-was-made?from=front",
        "/handbook/chapter-%1.html",
        "https://your-team.atlassian.net/jira/software/projects/ENG/boards/%1",
        "#section-%1",
        "https://your-team.atlassian.net/wiki/spaces/ENG/overview?from=%1",
        "https://another-team.atlassian.net/browse/ENG-%1",
        "https://cdn.example.net/assets/%1/picture.png",
        "https://app.example.com/records/list?page=%1",
    };
    return kinds[number % kinds.size()].arg(number);
}

/// A page of about `size` characters in which each link is followed by `between` characters of
/// text, and the text one sees of it; with `same` all links are one.
ClipboardContents makePage(qsizetype size, qsizetype between, bool same) {
    static const QString prose =
        QString::fromUtf8("The meeting on Thursday moved to the café — bring last week’s notes, "
                          "the plan (draft 3) and the list of what is still open. ")
            .repeated(8);
    QString html, plain;
    html.reserve(size + 1000);
    for (int number = 0; html.size() < size; ++number) {
        const QString title = QString("Chapter %1").arg(same ? 0 : number);
        html += "<a class=\"ref\" href=\"" + link(same ? 0 : number) + "\">" + title + "</a>\n<p>" +
                prose.first(between) + "</p>\n";
        plain += title + '\n' + prose.first(between) + '\n';
    }
    return {0, plain, html, {}};
}

/// The patterns of the detection and nothing else.
double scanTime(const ClipboardContents &page) {
    static const QRegularExpression url(R"(https?://[^\s"'<>)\]]+)",
                                        QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression href(R"(href=["']([^"']+)["'])",
                                         QRegularExpression::UseUnicodePropertiesOption);
    const double begun = now();
    qsizetype count = 0;
    for (const auto &[pattern, text] : {std::pair(&url, &*page.text), std::pair(&href, &*page.html),
                                        std::pair(&url, &*page.html)}) {
        auto matches = pattern->globalMatch(*text, 0, QRegularExpression::NormalMatch,
                                            QRegularExpression::DontCheckSubjectStringMatchOption);
        for (; matches.hasNext(); ++count)
            matches.next();
    }
    const double took = now() - begun;
    require(count > 0, "the patterns find nothing");
    return took;
}

double detectionTime(const ClipboardContents &page) {
    const double begun = now();
    const auto found = Enrichment::detectRef(page, "https://your-team.atlassian.net",
                                             "https://app.example.com/records");
    const double took = now() - begun;
    require(!found, "a reference where there is none");
    return took;
}

QList<Row> benchPage(const QString &what, qsizetype between, bool same) {
    const ClipboardContents whole = makePage(large, between, same);
    const ClipboardContents half = makePage(large / 2, between, same);
    QList<double> times, halfTimes, scanTimes;
    for (int round = -1; round < rounds; ++round) {
        const double time = detectionTime(whole);
        const double scan = scanTime(whole);
        const double halfTime = detectionTime(half);
        if (round < 0) // compiles the patterns
            continue;
        times.append(time);
        scanTimes.append(scan);
        halfTimes.append(halfTime);
    }
    return {ratioRow("Detection in 10 MB, " + what, median(times), median(scanTimes), "ms",
                     "1.50 at most"),
            ratioRow("  the same against 5 MB", median(times), median(halfTimes), "ms", "about 2")};
}

} // namespace

QList<Row> benchDetection() {
    return benchPage("a link every 300 characters", 220, false) +
           benchPage("many links", 20, false) + benchPage("one link repeated", 220, true);
}
