#pragma once

#include "model/AccountRef.h"

#include <QStringView>

#include <optional>

/// ID links: a 24-digit hexadecimal record id and the page of the user's own application it opens.
/// String work only, no network. A hex digit is an ASCII one that stands alone, without a combining
/// mark.
namespace AccountClient {

/// Whether `text` is a record id and nothing else, in either letter case.
bool isAccountId(QStringView text);

/// The base address as ID links use it: trimmed, ending in "/", otherwise as typed. Empty if it is
/// no URL with a scheme and a host. Pure, usable from any thread.
QString normalizedBase(const QString &accountBaseURL);

/// The same of the setting `accountBaseURL`; empty means that ID links are off. Main thread.
QString normalizedBase();

/// The record that `from`, one whole candidate text, names: either by its bare id, or by the id
/// right after the first occurrence of `base` in it. Nothing otherwise, and nothing for an empty
/// `base`. Pure and linear in the length of the text; usable from any thread.
std::optional<AccountRef> extractRef(QStringView from, const QString &base);

} // namespace AccountClient
