#pragma once

#include "clients/CloudId.h"
#include "enrichment/Run.h"

/// The fetch of a title: what it needs from the keyring and how it is asked for.
struct TitleFetch {
    QString account; ///< whose token
    QString product;
    QString tokenMessage; ///< for the user without one
    /// On a background thread.
    std::function<void(const Run &run, const SiteAccess &site)> send;

    /// Sends it for `run`, unless something is missing, which the user is told. Main thread;
    /// returns at once.
    void start(const Run &run) const;
};
