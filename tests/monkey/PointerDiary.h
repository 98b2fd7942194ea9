#pragma once

#include <QObject>
#include <QStringList>

/// Who was told of the last presses and releases of buttons, window and widget alike, and what had the
/// pointer meanwhile: for whoever looks for a release that did not arrive.
class PointerDiary : public QObject
{
    Q_OBJECT

public:
    PointerDiary();

    /// One line each.
    QStringList lines() const { return m_lines; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void add(const QString &line);

    QStringList m_lines;
};
