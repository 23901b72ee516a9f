#include "hardening/Findings.h"

#include <cstdio>

bool Findings::check(bool holds, const QString &fault) {
    if (!holds) {
        ++m_faults;
        note("FAULT: " + fault);
    }
    return holds;
}

void Findings::note(const QString &line) {
    std::puts(qPrintable(line));
    std::fflush(stdout);
}
