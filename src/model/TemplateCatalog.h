#pragma once

#include <QHashFunctions>
#include <QList>
#include <QString>

/// A piece that the template editor offers.
struct TemplatePlaceholder {
    /// What is inserted into the template, such as "{key}".
    QString token;
    /// The explanation shown to the user.
    QString label;

    /// What tells placeholders of one list apart: the token.
    const QString &id() const { return token; }

    bool operator==(const TemplatePlaceholder &) const = default;
};

/// Hashes both fields, as equality compares them.
inline size_t qHash(const TemplatePlaceholder &placeholder, size_t seed = 0) {
    return qHashMulti(seed, placeholder.token, placeholder.label);
}

/// The placeholders of the two templates, in display order. Built on first use, from any thread.
namespace TemplateCatalog {

/// What a Jira template may hold.
const QList<TemplatePlaceholder> &placeholders();

/// What a Confluence template may hold.
const QList<TemplatePlaceholder> &confluencePlaceholders();

} // namespace TemplateCatalog
