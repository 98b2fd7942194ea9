#pragma once

#include <QFrame>
#include <QString>
#include <QVector>

class QLabel;

/// A strip at the top of the window that says what is wrong, for as long as it is or until it is dismissed.
class NotificationBar : public QFrame
{
    Q_OBJECT

public:
    explicit NotificationBar(QWidget *parent = nullptr);

    /// A further message joins those that still stand there. It takes the place of what was told of the
    /// same `subject`; an empty one says that nothing is wrong with that any more.
    void tell(const QString &message, const QString &subject = QString());
    QString text() const;

private:
    struct Message
    {
        QString subject;
        QString text;
    };

    void dismiss();
    void refresh();

    QVector<Message> m_messages;
    QLabel *m_label;
};
