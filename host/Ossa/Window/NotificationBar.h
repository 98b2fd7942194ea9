#pragma once

#include <QFrame>

class QLabel;

/// A strip at the top of the window that says what went wrong and stays until it is dismissed.
class NotificationBar : public QFrame
{
    Q_OBJECT

public:
    explicit NotificationBar(QWidget *parent = nullptr);

    /// A further message joins those that still stand there.
    void tell(const QString &message);
    QString text() const;

private:
    void dismiss();

    QLabel *m_label;
};
