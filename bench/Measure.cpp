#include "bench/Measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

double now() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double median(QList<double> figures) {
    std::sort(figures.begin(), figures.end());
    const qsizetype half = figures.size() / 2;
    return figures.size() % 2 ? figures[half] : (figures[half - 1] + figures[half]) / 2;
}

Row ratioRow(const QString &what, double brindle, double floor, const QString &unit,
             const QString &wanted) {
    const auto shown = [&](double figure) {
        return QString::number(figure, 'f', figure < 10 ? 2 : 1) + ' ' + unit;
    };
    return {what, shown(brindle), shown(floor), QString::number(brindle / floor, 'f', 2), wanted};
}

void printTable(const QList<Row> &rows) {
    QList<QStringList> lines{{"what", "Brindle", "floor", "ratio", "wanted"}};
    for (const Row &row : rows)
        lines.append({row.what, row.brindle, row.floor, row.ratio, row.wanted});
    QList<qsizetype> widths(lines[0].size(), 0);
    for (const QStringList &line : lines) {
        for (qsizetype column = 0; column < line.size(); ++column)
            widths[column] = std::max(widths[column], line[column].size());
    }
    for (const QStringList &line : lines) {
        QString text = line[0].leftJustified(widths[0]);
        for (qsizetype column = 1; column < line.size(); ++column)
            text += "  " + line[column].rightJustified(widths[column]);
        std::puts(qPrintable(text));
    }
    std::fflush(stdout);
}

void require(bool holds, const QString &problem) {
    if (!holds)
        throw std::runtime_error(problem.toStdString());
}
