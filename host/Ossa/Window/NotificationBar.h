#pragma once

#include <QFrame>
#include <QString>
#include <QVector>

class QAction;
class QLabel;
class QPushButton;

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

    /// A button that mends what is told of a subject, to be seen as long as that stands there.
    void addRemedy(const QString &subject, QAction *action);

private:
    struct Message
    {
        QString subject;
        QString text;
    };

    void dismiss();
    void refresh();

    struct Remedy
    {
        QString subject;
        QPushButton *button;
    };

    QVector<Message> m_messages;
    QVector<Remedy> m_remedies;
    QLabel *m_label;
};
