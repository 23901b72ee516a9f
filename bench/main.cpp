#include "bench/Benches.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

struct Part {
    QString name;
    QList<Row> (*bench)();
};

int run(const QStringList &chosen) {
    // Those in this process come last: their megabytes would make starting programs slower.
    const QList<Part> parts{{"paste", benchPastes},        {"growth", benchGrowth},
                            {"fetch", benchFetch},         {"start", benchStart},
                            {"idle", benchIdle},           {"window", benchWindow},
                            {"rendering", benchRendering}, {"detection", benchDetection}};
    for (const QString &name : chosen) {
        const bool isKnown = std::any_of(parts.begin(), parts.end(),
                                         [&](const Part &part) { return part.name == name; });
        require(isKnown, "no such part: " + name);
    }
    QList<Row> rows;
    for (const Part &part : parts) {
        if (!chosen.isEmpty() && !chosen.contains(part.name))
            continue;
        std::fprintf(stderr, "Measuring: %s\n", qPrintable(part.name));
        rows += part.bench();
    }
    printTable(rows);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    try {
        return run(QCoreApplication::arguments().sliced(1));
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
