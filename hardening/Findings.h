#pragma once

#include <QString>

/// The faults found so far, printed as they come. Main thread only.
class Findings {
public:
    /// Counts and prints `fault` unless `holds`, which it gives back.
    bool check(bool holds, const QString &fault);
    /// Prints something to know that is no fault.
    static void note(const QString &line);
    int faults() const { return m_faults; }

private:
    int m_faults = 0;
};
