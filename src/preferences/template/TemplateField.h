#pragma once

#include "model/TemplateCatalog.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class AutocompleteList;
class PlaceholderTextView;
class ResizeGrip;

/// The editor of a link template. Typing "{" opens a popover with every placeholder, which goes
/// when the brace, the focus or the field does. The field grows with its text and never shrinks by
/// itself. Main thread only.
class TemplateField : public QWidget {
    Q_OBJECT

public:
    enum class Grip { None, Resizes };

    static constexpr int leastHeight = 22;
    static constexpr int greatestHeight = 400;

    TemplateField(const QString &name, const QList<TemplatePlaceholder> &placeholders, Grip grip,
                  QWidget *parent = nullptr);
    ~TemplateField() override;

    QString text() const;
    /// Brings the field in line with the template, the caret at its end; does nothing when the text
    /// is the same already.
    void setText(const QString &text);

    /// Inserts `token` at the caret, in place of a "{" right before it, as one step to undo. The
    /// focus and the caret follow in a later turn of the event loop.
    void insertAtCursor(const QString &token);

    /// The height of the text area, without the padding around it.
    int fieldHeight() const { return m_height; }
    PlaceholderTextView *textView() const { return m_textView; }
    /// The open popover, or null.
    AutocompleteList *popover() const;

Q_SIGNALS:
    /// The user changed the text.
    void textEdited(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void textDidChange();
    void showAutocomplete();
    void closeAutocomplete();
    bool braceBefore(int position) const;
    bool endsAutocomplete(const QObject *watched, const QEvent *event) const;
    void growToContent();
    void setFieldHeight(int height);
    void addGrip();

    QList<TemplatePlaceholder> m_placeholders;
    PlaceholderTextView *m_textView;
    QPointer<AutocompleteList> m_popover;
    ResizeGrip *m_grip = nullptr;
    int m_height = 0;
    std::optional<int> m_dragStart; ///< the height at the start of a drag that is under way
    bool m_settingText = false;
};
