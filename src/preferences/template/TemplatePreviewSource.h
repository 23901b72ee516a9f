#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

/// A real issue shown in the preview.
struct PreviewTicket {
    QString key{};
    std::optional<QString> type{};
    QString summary{};
    std::optional<QString> status{};
};

/// A real page or blog post shown in the preview.
struct ConfluencePreview {
    QString title{};
    QString space{};
    QString type{};
    QString id{};
};

/// What the two previews have in common: a fetch that may be running, and the last one's failure.
/// Main thread only. Nothing is kept beyond the life of the object; results of a fetch that it does
/// not live to see are dropped.
class PreviewSource : public QObject {
    Q_OBJECT

public:
    /// A message for the user, or nothing.
    const std::optional<QString> &error() const { return m_error; }
    /// Whether a fetch is under way; it ends with the first result that comes in.
    bool isFetching() const { return m_isFetching; }

    /// Whether real data is shown, not the sample.
    virtual bool showsReal() const = 0;
    /// What is previewed, in a few words.
    virtual QString caption() const = 0;
    /// The template of the settings, rendered; marked text (model/MarkedText.h).
    virtual QString rendered() const = 0;
    /// Fetches what the user named. Empty input does nothing; what can't be fetched becomes the
    /// error, and what was shown stays. When several fetches run, the last to end decides.
    virtual void fetch(const QString &input) = 0;
    /// Back to the sample.
    virtual void clear() = 0;

Q_SIGNALS:
    /// Something of the above may have changed, the rendered text included.
    void changed();

protected:
    explicit PreviewSource(QObject *parent);

    using Apply = std::function<void()>;
    /// Hands the outcome of a fetch over, from any thread, once.
    using Done = std::function<void(Apply)>;
    using Fetch = std::function<void(const QString &token, const Done &done)>;

    /// Looks up the token of `account` and runs `fetch` on a background thread; what it is done
    /// with is applied on the main thread, if this object still lives. Without an e-mail nothing is
    /// started; without a token the outcome is the error `noToken`.
    void start(const QString &account, const QString &noToken, const Fetch &fetch);

    void setError(const std::optional<QString> &error) { m_error = error; }

private:
    std::optional<QString> m_error;
    bool m_isFetching = false;
};

/// The preview of the Jira template, on a sample or on a real issue.
class JiraPreviewSource : public PreviewSource {
    Q_OBJECT

public:
    explicit JiraPreviewSource(QObject *parent = nullptr);

    bool showsReal() const override { return m_ticket.has_value(); }
    QString caption() const override;
    QString rendered() const override;
    void fetch(const QString &input) override;
    void clear() override;

    /// The address of the issue shown.
    QString url() const;
    /// Whether the sample is a link to a comment; at first it is.
    bool sampleShowsComment() const { return m_sampleShowsComment; }
    void setSampleShowsComment(bool showsComment);

private:
    std::optional<PreviewTicket> m_ticket;
    bool m_sampleShowsComment = true;
};

/// The preview of the Confluence template, on a sample or on a real page.
class ConfluencePreviewSource : public PreviewSource {
    Q_OBJECT

public:
    explicit ConfluencePreviewSource(QObject *parent = nullptr);

    bool showsReal() const override { return m_page.has_value(); }
    QString caption() const override;
    QString rendered() const override;
    void fetch(const QString &input) override;
    void clear() override;

private:
    std::optional<ConfluencePreview> m_page;
};
