#pragma once

#include <QLabel>

/// The title of a section, in upper case.
class SectionHeader : public QLabel {
    Q_OBJECT

public:
    explicit SectionHeader(const QString &text, QWidget *parent = nullptr);
};
