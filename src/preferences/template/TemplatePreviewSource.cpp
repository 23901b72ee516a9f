#include "preferences/template/TemplatePreviewSource.h"

#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "clients/TokenRequest.h"
#include "enrichment/TemplateRendering.h"
#include "model/Text.h"
#include "platform/Platform.h"
#include "preferences/connection/Addresses.h"
#include "storage/Settings.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

PreviewSource::PreviewSource(QObject *parent) : QObject(parent) {
    connect(&Settings::shared(), &Settings::didChange, this, &PreviewSource::changed);
}

void PreviewSource::start(const QString &account, const QString &noToken, const Fetch &fetch) {
    if (Settings::shared().email().isEmpty()) {
        m_error = u"Set your Atlassian email first."_s;
        Q_EMIT changed();
        return;
    }
    m_error.reset();
    m_isFetching = true;
    Q_EMIT changed();

    const Done done = [self = QPointer(this)](const Apply &apply) {
        Platform::current().dispatch->toMain([self, apply] {
            if (!self)
                return;
            self->m_isFetching = false;
            apply();
            Q_EMIT self->changed();
        });
    };
    TokenRequest::Steps steps;
    steps.withoutToken = [this, done, noToken](const Keychain::TokenAnswer &) {
        done([this, noToken] { m_error = noToken; });
    };
    steps.maySend = [self = QPointer(this)](const Keychain::TokenAnswer &) { return !!self; };
    steps.send = [fetch, done](const QString &token) { fetch(token, done); };
    TokenRequest::start(account, steps);
}

JiraPreviewSource::JiraPreviewSource(QObject *parent) : PreviewSource(parent) {}

QString JiraPreviewSource::caption() const {
    return m_ticket ? m_ticket->key : u"Sample ticket"_s;
}

QString JiraPreviewSource::rendered() const {
    const QString &text = Settings::shared().displayTemplate();
    if (m_ticket)
        return Enrichment::renderTemplate(text, m_ticket->key, m_ticket->type, m_ticket->summary,
                                          m_ticket->status, false, {}, {});
    std::optional<QString> comment;
    std::optional<QString> author;
    if (m_sampleShowsComment) {
        comment = u"Looks like the token refresh races on cold start"_s;
        author = u"Alice"_s;
    }
    return Enrichment::renderTemplate(text, u"AB-12"_s, u"Bug"_s, u"Fix login crash"_s,
                                      u"In Progress"_s, m_sampleShowsComment, comment, author);
}

QString JiraPreviewSource::url() const {
    QString base = Text::trimmedSpaces(Settings::shared().baseURL());
    if (base.isEmpty())
        base = Addresses::exampleSite();
    else if (base.endsWith(u'/'))
        base.chop(1);
    return base + u"/browse/"_s + (m_ticket ? m_ticket->key : u"AB-12"_s);
}

void JiraPreviewSource::setSampleShowsComment(bool showsComment) {
    m_sampleShowsComment = showsComment;
    Q_EMIT changed();
}

void JiraPreviewSource::fetch(const QString &input) {
    const QString key = Text::trimmed(input).toUpper();
    if (key.isEmpty())
        return;
    const SiteAccess site = SiteAccess::configured();
    start(AppInfo::keychainAccount(), u"Set your API token first."_s,
          [this, key, site](const QString &token, const Done &done) {
              JiraClient::fetchSummary(
                  key, std::nullopt, site.withToken(token),
                  [this, key, done](const JiraClient::FetchResult &result) {
                      done([this, key, result] {
                          if (result.summary)
                              m_ticket = {key, result.type, *result.summary, result.status};
                          setError(result.summary ? std::nullopt
                                                  : std::optional(result.error.value_or(
                                                        u"Failed to fetch "_s + key)));
                      });
                  });
          });
}

void JiraPreviewSource::clear() {
    m_ticket.reset();
    setError(std::nullopt);
    Q_EMIT changed();
}

namespace {

/// The page that the user's input means, still without a title; nothing when it means none.
std::optional<ConfluencePreview> namedPage(const QString &input, const QString &baseURL) {
    if (const auto ref = ConfluenceClient::extractRef(input, baseURL))
        return ConfluencePreview{{}, ref->spaceKey, ref->typeLabel(), ref->pageId};
    if (std::all_of(input.begin(), input.end(), [](QChar c) { return c.isDigit(); }))
        return ConfluencePreview{{}, u"?"_s, u"Page"_s, input};
    return std::nullopt;
}

} // namespace

ConfluencePreviewSource::ConfluencePreviewSource(QObject *parent) : PreviewSource(parent) {}

QString ConfluencePreviewSource::caption() const {
    return m_page ? u"Page "_s + m_page->id : u"Sample page"_s;
}

QString ConfluencePreviewSource::rendered() const {
    const ConfluencePreview page = m_page.value_or(
        ConfluencePreview{u"Q3 Planning Notes"_s, u"ENG"_s, u"Page"_s, u"4587213"_s});
    return Enrichment::renderConfluenceTemplate(Settings::shared().confluenceTemplate(), page.title,
                                                page.space, page.type, page.id);
}

void ConfluencePreviewSource::fetch(const QString &input) {
    const QString trimmed = Text::trimmed(input);
    if (trimmed.isEmpty())
        return;
    const SiteAccess site = SiteAccess::configured();
    const auto page = namedPage(trimmed, site.baseURL);
    start(AppInfo::keychainAccountConfluence(),
          u"Set your Confluence API token first (Connection tab)."_s,
          [this, page, site](const QString &token, const Done &done) {
              if (!page) {
                  done([this] {
                      setError(u"Paste a Confluence page URL (or a numeric page id)."_s);
                  });
                  return;
              }
              ConfluenceClient::fetchPage(
                  page->id, site.withToken(token),
                  [this, page, done](const ConfluenceClient::ConfluenceFetchResult &result) {
                      done([this, page, result] {
                          if (result.title) {
                              m_page = page;
                              m_page->title = *result.title;
                          }
                          setError(result.title ? std::nullopt
                                                : std::optional(result.error.value_or(
                                                      u"Couldn't fetch that page."_s)));
                      });
                  });
          });
}

void ConfluencePreviewSource::clear() {
    m_page.reset();
    setError(std::nullopt);
    Q_EMIT changed();
}
