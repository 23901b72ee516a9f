#pragma once

#include <QString>

/// A record id and the link made of it.
struct AccountRef {
    /// 24 hexadecimal digits in lower case.
    QString id;
    /// The normalized base address directly followed by `id`.
    QString url;
};
